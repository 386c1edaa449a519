/// The lists of a database, as hosts of the C interface hold them: for tests, benchmarks and
/// fuzzers alike.
#ifndef ZELK_TESTS_SUPPORT_LISTS_HPP
#define ZELK_TESTS_SUPPORT_LISTS_HPP

#include "zelk/zelk.h"

/// Its destructor releases them.
struct Lists {
  Lists() = default;
  Lists(const Lists&) = delete;
  Lists& operator=(const Lists&) = delete;
  ~Lists() {
    zelk_free(nodes, messages, variables, timings, definitions, values, categories, &filter,
              comment, version, types, tables);
  }

  /// Calls `zelk_read`, `zelk_try_read` or `zelk_try_read_text`, which add to what is in the lists.
  template <typename Read, typename... Input>
  auto read_by(Read read, Input... input) {
    return read(input..., &nodes, &messages, &variables, &timings, &definitions, &values,
                &categories, &filter, &comment, &version, &types, &tables, slots);
  }
  uint32_t try_read(const char* path) { return read_by(zelk_try_read, path); }
  /// Calls `zelk_write` or `zelk_try_write`.
  template <typename Write>
  auto write_by(Write function, const char* path, uint8_t with_ranges = 1) const {
    return function(path, nodes, messages, variables, timings, definitions, values, categories,
                    filter, comment, version, types, tables, with_ranges);
  }
  uint32_t write(const char* path, uint8_t with_ranges = 1) const {
    return write_by(zelk_write, path, with_ranges);
  }

  symblk* nodes = nullptr;
  msgblk* messages = nullptr;
  env_var_blk* variables = nullptr;
  btlblk* timings = nullptr;
  attr_def* definitions = nullptr;
  attr* values = nullptr;
  cat* categories = nullptr;
  filter_t filter = {};
  char* comment = nullptr;
  char* version = nullptr;
  sigtype* types = nullptr;
  valtable* tables = nullptr;
  attr_def* slots[4] = {};
};

#endif
