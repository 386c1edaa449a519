/// \file
/// The Arrow C data interface and C stream interface: how tables of columns pass between libraries
/// of one process without a copy. The layout of these structures is fixed for good.

#ifndef ZELK_LOGS_ARROW_H
#define ZELK_LOGS_ARROW_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

/// The type of an array. Whoever has it calls `release` once, which owns all that it points to;
/// null `release`: released, or moved away.
struct ArrowSchema {
  const char* format;    ///< "g" is double, "l" a 64-bit integer, "+s" a struct, ...
  const char* name;      ///< may be null
  const char* metadata;  ///< may be null
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;  ///< null unless the array is dictionary-encoded
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

/// The values of an array; see `ArrowSchema`.
struct ArrowArray {
  int64_t length;
  int64_t null_count;  ///< -1: not computed
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

/// Arrays of one schema, one after the other.
struct ArrowArrayStream {
  /// @return 0, or an `errno` code
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  /// Likewise; at the end `out` is a released array.
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  /// Why the last call failed; valid until the next one, or null.
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

#endif

#ifdef __cplusplus
}
#endif

#endif
