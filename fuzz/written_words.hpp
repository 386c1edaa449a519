/// The records of a database in words, as far as a file holds them.
#ifndef ZELK_FUZZ_WRITTEN_WORDS_HPP
#define ZELK_FUZZ_WRITTEN_WORDS_HPP

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "support/description.hpp"

inline std::string without(std::string text, std::string_view part) {
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos;)
    text.erase(at, part.size());
  return text;
}

/// Puts the lines of attribute definitions in order: a file has a section for each of three kinds.
inline std::string with_sorted_definitions(const std::string& text) {
  std::string others;
  std::multiset<std::string> definitions;
  for (std::size_t at = 0, end = 0; at < text.size(); at = end) {
    end = std::min(text.find('\n', at), text.size() - 1) + 1;
    const std::string line = text.substr(at, end - at);
    if (line.starts_with("definition ")) {
      definitions.insert(line);
    } else {
      others += line;
    }
  }
  for (const std::string& line : definitions) others += line;
  return others;
}

/// Numbers have 14 digits, and an empty comment is none.
inline std::string written_words(const zelk::ModelView& model) {
  constexpr int kDigits = 14;
  const std::string words = without(describe(model, kDigits), " // \"\"");
  return with_sorted_definitions(without(words, "comment \"\"\n"));
}

#endif
