/// \file
/// Texts in one line, whatever control characters are in them.

#ifndef ZELK_BASE_ESCAPING_HPP
#define ZELK_BASE_ESCAPING_HPP

#include <string>
#include <string_view>

namespace zelk {

/// `text`, in UTF-8, fit for a terminal line: control characters become "\n", "\t", "\x1B", ...
/// Bytes that are no UTF-8, as in the name of a file, are not changed.
std::string escaped(std::string_view text);

/// `escaped`, but with tabs, carriage returns and line feeds as they are.
std::string escaped_between_lines(std::string_view text);

/// `escaped` in double quotes; double quotes and backslashes inside get a backslash.
std::string in_quotes(std::string_view text);

}  // namespace zelk

#endif
