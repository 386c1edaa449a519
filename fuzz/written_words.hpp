/// The records of a database in words, as far as a file holds them.
#ifndef ZELK_FUZZ_WRITTEN_WORDS_HPP
#define ZELK_FUZZ_WRITTEN_WORDS_HPP

#include <string>
#include <string_view>

#include "support/description.hpp"

inline std::string without(std::string text, std::string_view part) {
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos;)
    text.erase(at, part.size());
  return text;
}

/// Numbers have 14 digits, and an empty comment is none.
inline std::string written_words(const zelk::ModelView& model) {
  constexpr int kDigits = 14;
  return without(without(describe(model, kDigits), " // \"\""), "comment \"\"\n");
}

#endif
