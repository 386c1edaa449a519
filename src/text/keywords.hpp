/// \file
/// The keywords of the format.

#ifndef ZELK_TEXT_KEYWORDS_HPP
#define ZELK_TEXT_KEYWORDS_HPP

#include <array>
#include <string_view>

namespace zelk {

struct Keyword {
  std::string_view text;
  int code;  ///< token code of the grammar; "EV_DATA_" and "ENVVAR_DATA_" share one
  const char* description;
};

/// All keywords. The order is part of the format: the rows behind "NS_" make up a written "NS_"
/// list.
extern const std::array<Keyword, 40> zelk_keyword;

/// The keyword equal to `name`, case included; null when it is none.
const Keyword* find_keyword(std::string_view name);

/// Stores the description of the keyword `name` and returns 1; stores null and returns 0 when it is
/// none.
int zelk_keyword_lookup(const char* name, const char** description);

}  // namespace zelk

#endif
