#include "text/words.hpp"

#include <algorithm>

#include "text/characters.hpp"
#include "text/keywords.hpp"

namespace zelk {

bool is_name(std::string_view text) {
  return !text.empty() && is_letter(text[0]) &&
         std::all_of(text.begin(), text.end(), is_name_character) && !find_keyword(text);
}

}  // namespace zelk
