/// \file
/// The columns of traces whose head is lost.

#ifndef ZELK_LOGS_FORMS_TRC_COLUMNS_HPP
#define ZELK_LOGS_FORMS_TRC_COLUMNS_HPP

#include <string_view>

#include "logs/input/byte_stream.hpp"

namespace zelk::logs {

/// Columns that lines can have, as their words show.
struct TrcColumns {
  std::string_view letters;  ///< those of the first version that takes the lines; empty for none
  bool is_only = false;      ///< no other version takes them
};

/// Looks at lines until they tell the version. Comments, blank lines, and lines that no version
/// takes behind those in front of them, tell nothing.
TrcColumns columns_of_trc(std::string_view lines);

/// Whether the first line is one of a trace, which none of another form is. Peeks at no byte behind
/// the first one that tells.
bool begins_with_trc_line(PeekedStream& stream);

}  // namespace zelk::logs

#endif
