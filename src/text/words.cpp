#include "text/words.hpp"

#include <algorithm>

#include "base/characters.hpp"
#include "text/keywords.hpp"
#include "zelk/dbc.h"

namespace zelk {

bool is_name(std::string_view text) {
  return !text.empty() && is_letter(text[0]) &&
         std::all_of(text.begin(), text.end(), is_name_character) && !find_keyword(text);
}

bool can_name_object(std::string_view name, bool is_node) {
  return is_name(name) && !(is_node && is_no_node(name));
}

}  // namespace zelk

extern "C" int zelk_can_name_object(const char* name, int is_node) {
  return name && zelk::can_name_object(name, is_node != 0) ? 1 : 0;
}
