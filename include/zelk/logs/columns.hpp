/// \file
/// Frames decoded into tables of columns, one table for each message.

#ifndef ZELK_LOGS_COLUMNS_HPP
#define ZELK_LOGS_COLUMNS_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/database.hpp"
#include "zelk/export.h"
#include "zelk/logs/arrow.h"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/frame.hpp"

/// What columns of signals hold.
enum class ZelkColumnValues : std::uint8_t {
  kPhysical,  ///< physical values, as doubles
  kRaw,       ///< raw integers in the narrowest type that holds all of the signal; a float or
              ///< double for IEEE signals
  kTexts,     ///< value descriptions as a dictionary, null for values that have none; physical
              ///< values for IEEE signals, and those without descriptions
};

struct ZelkColumnOptions {
  ZelkColumnValues values = ZelkColumnValues::kPhysical;
  bool raw_beside = false;    ///< with `kTexts`: behind each column of texts one of raw integers,
                              ///< named "SIGNAL.raw"
  bool match_groups = false;  ///< extended identifiers also match messages by their J1939 parameter
                              ///< group that the database does not say to be of J1939
  std::size_t batch_rows = 8192;                  ///< most rows of one batch; at least 1
  std::size_t kept_bytes = std::size_t{1} << 26;  ///< when the values of all tables together take
                                                  ///< more memory, the larger tables give batches
                                                  ///< of fewer rows
};

/// The type of a column's values.
enum class ZelkColumnType : std::uint8_t {
  kInt8,
  kInt16,
  kInt32,
  kInt64,
  kUint8,
  kUint16,
  kUint32,
  kUint64,
  kFloat,
  kDouble,
  kDictionary,  ///< indices of 32 bits into texts in UTF-8
};

struct ZelkColumn {
  std::string name;  ///< in UTF-8; a name that an earlier column has becomes "NAME_2", and so on
  ZelkColumnType type;
  std::string unit;      ///< of physical values, in UTF-8; may be empty
  const sigblk* signal;  ///< null for the columns of time and channel
};

/// The table of a message. Its first columns are "time" (nanoseconds, as in `ZelkFrame::time`; null
/// without one) and "channel" (a dictionary; null without a name); those of its signals follow in
/// the order of the message.
struct ZelkColumnTable {
  std::string name;      ///< that of the message, in UTF-8; "DATABASE::MESSAGE" where several
                         ///< databases have a message of that name; told apart as columns are
  std::string database;  ///< the name that `AddDatabase` gave it
  const msgblk* message;
  std::vector<ZelkColumn> columns;
};

/// Rows that were decoded from one block of frames: what passes from the threads that decode to the
/// one that puts all rows in order.
class ZELK_LOGS_API ZelkColumnRows {
 public:
  ZelkColumnRows();
  ZelkColumnRows(ZelkColumnRows&&) noexcept;
  ZelkColumnRows& operator=(ZelkColumnRows&&) noexcept;
  ~ZelkColumnRows();

  /// What became of the frames of the block.
  const ZelkFrameCounts& Counts() const;

 private:
  friend class ZelkColumnDecoder;
  struct Content;
  std::unique_ptr<Content> content_;
};

/// Decodes frames into tables of columns.
///
/// Columns have the layout, alignment and bit order of the Arrow columnar format, and leave as
/// arrays of structs through its C data interface. Values are those of `ZelkFrameDecoder` to the
/// last bit, also outside of their range, and null where it finds the signal absent: by its
/// multiplexor, or because the frame is too short. Under a null stands 0. Frames that are remote or
/// error frames, or have no message, make no row.
///
/// First databases are added and messages selected, by one thread. Then any number of threads may
/// `Decode`, each into rows of its own, while one puts them in order with `Put` and takes batches.
class ZELK_LOGS_API ZelkColumnDecoder {
 public:
  explicit ZelkColumnDecoder(ZelkColumnOptions options = {});
  ZelkColumnDecoder(const ZelkColumnDecoder&) = delete;
  ZelkColumnDecoder& operator=(const ZelkColumnDecoder&) = delete;
  ~ZelkColumnDecoder();

  // --- Choosing what is decoded; std::logic_error once `Tables` or `Decode` was called ---

  /// Adds a database. Of several, the first with a frame's identifier counts, or else the first
  /// with its J1939 parameter group. The same one may be added for several channels.
  ///
  /// @param database  must outlive the object, unchanged; its texts must be in UTF-8 or are taken
  /// for Windows-1252
  /// @param name      what to call it
  /// @param channel   the frames of which it describes; empty: all
  void AddDatabase(const ZelkDatabase& database, std::string_view name,
                   std::string_view channel = {});
  /// Selects messages whose names match, and no others but those of further calls. `*` stands for
  /// any characters and `?` for one. A frame of a message that is not selected makes no row, even
  /// where a later database has a selected one for it.
  ///
  /// @return whether any message of the databases added so far matches
  bool SelectMessages(std::string_view pattern);
  /// Selects signals likewise, by name or as "MESSAGE.SIGNAL". Messages without a selected signal
  /// have no table then.
  bool SelectSignals(std::string_view pattern);

  /// The tables, in the order of databases and messages. The first call ends the choosing.
  const std::vector<ZelkColumnTable>& Tables();

  // --- Decoding ---

  // `Tables` or the `Decode` with one argument comes first: before, all else throws
  // std::logic_error. An index of no table gives std::out_of_range. Where memory runs out
  // (std::bad_alloc), the rows that were put stay what they were, but for `TakeBatch`.

  /// Decodes a block into rows, in place of what they held.
  void Decode(const ZelkFrameBlock& frames, ZelkColumnRows& rows) const;
  /// Appends rows, which this object has decoded, to the tables. They are empty afterwards; their
  /// memory is kept for the next block.
  void Put(ZelkColumnRows& rows);
  /// Decodes a block and appends its rows, without a copy of them.
  void Decode(const ZelkFrameBlock& frames);

  /// Rows that were put and not taken out yet.
  ///
  /// @param table  index in `Tables`
  std::size_t RowCount(std::size_t table) const;

  /// The type of the arrays of a table: a struct with a child for each column, named and, where a
  /// signal has a unit, with it as metadata under "unit".
  ///
  /// @param out  receives the type; whoever has it releases it
  void GetSchema(std::size_t table, ArrowSchema* out) const;
  /// Takes the first rows out: `batch_rows` of them or, at the end, those that are left. Call it
  /// until the result is false. Until a table has `batch_rows` rows, or all tables together more
  /// than `kept_bytes`, it keeps them; `is_end` takes them at any time. Memory is bounded when the
  /// batches of all tables are taken after each `Put` or `Decode`.
  ///
  /// @param out  receives the rows, unless the result is false; whoever has it releases it, when
  /// and in which thread it likes, also after this object is gone
  /// @return false when the table keeps its rows and it is not the end, or there are none
  /// @throws std::bad_alloc; rows may be lost then
  bool TakeBatch(std::size_t table, bool is_end, ArrowArray* out);

 private:
  friend class ZelkColumnStream;
  struct State;
  std::unique_ptr<State> state_;
};

#endif
