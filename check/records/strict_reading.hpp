/// \file
/// The strict reader's answer to a text: the records of its database, or why there are none.

#ifndef ZELK_CHECK_RECORDS_STRICT_READING_HPP
#define ZELK_CHECK_RECORDS_STRICT_READING_HPP

#include <cstdint>
#include <string_view>

#include "zelk/records.h"

namespace zelk::check {

/// Lists of a database that somebody else owns, only to be read. Null heads are empty lists.
struct RecordsView {
  const symblk* nodes = nullptr;
  const msgblk* messages = nullptr;
  const env_var_blk* env_vars = nullptr;
  const attr_def* attr_defs = nullptr;
  const attr* attr_values = nullptr;  ///< of the network itself
};

/// Reads a text with the library's reader, and owns the records.
class StrictReading {
 public:
  /// Never throws but for lack of memory. What the reader notes enters the thread's error text.
  ///
  /// @param text  only read, and not needed afterwards
  explicit StrictReading(std::string_view text);
  StrictReading(const StrictReading&) = delete;
  StrictReading& operator=(const StrictReading&) = delete;
  ~StrictReading();

  bool is_accepted() const { return error_ == 0; }
  /// `ZELK_OK` or the number of the error; its line is the last one of the error text.
  std::uint32_t error() const { return error_; }
  /// Of a refused text what stands before the fault.
  RecordsView view() const;

 private:
  symblk* nodes_ = nullptr;
  msgblk* messages_ = nullptr;
  env_var_blk* env_vars_ = nullptr;
  btlblk* bit_timings_ = nullptr;
  attr_def* attr_defs_ = nullptr;
  attr* attr_values_ = nullptr;
  cat* categories_ = nullptr;
  filter_t filter_{};
  char* comment_ = nullptr;
  char* version_ = nullptr;
  sigtype* types_ = nullptr;
  valtable* tables_ = nullptr;
  std::uint32_t error_ = 0;
};

}  // namespace zelk::check

#endif
