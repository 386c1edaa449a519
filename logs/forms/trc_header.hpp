/// \file
/// What the head of a trace says about its lines.

#ifndef ZELK_LOGS_FORMS_TRC_HEADER_HPP
#define ZELK_LOGS_FORMS_TRC_HEADER_HPP

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelk::logs {

/// The columns of a line, by the letters that "$COLUMNS" has for them.
enum class TrcColumn : char {
  kNumber = 'N',
  kTime = 'O',     ///< milliseconds
  kType = 'T',     ///< "DT", "FD", "RR", ...
  kOldType = 't',  ///< that of versions before 2.0: "Rx", "Tx", "Warng", "Error"; no letter of
                   ///< "$COLUMNS"
  kBus = 'B',      ///< from 1
  kId = 'I',
  kDirection = 'd',  ///< "Rx", "Tx"
  kReserved = 'R',
  kLength = 'l',  ///< in bytes
  kLengthCode = 'L',
  kData = 'D',
};

struct TrcHeader {
  std::int64_t start = 0;         ///< nanoseconds since 1970-01-01 00:00; 0 when the trace has none
  std::string columns = "NOIlD";  ///< of `TrcColumn`
  bool has_columns = false;       ///< whether the head tells them, by itself or by its version
};

/// A version of the form.
struct TrcVersion {
  std::string_view name;
  std::string_view columns;  ///< from 2.0 on those that are usual
};

std::span<const TrcVersion> trc_versions();

/// Whether a line is one that `read_trc_directive` reads, and no comment.
bool is_trc_directive(std::string_view line);

/// Reads a line such as ";$FILEVERSION=1.1" into what is known so far. Others than those of
/// version, start time and columns change nothing.
///
/// @param line  without its line end
/// @return what is wrong with it; empty for nothing
std::string read_trc_directive(std::string_view line, TrcHeader& header);

}  // namespace zelk::logs

#endif
