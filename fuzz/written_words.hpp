/// The records of a database in words, as far as a file holds them.
#ifndef ZELK_FUZZ_WRITTEN_WORDS_HPP
#define ZELK_FUZZ_WRITTEN_WORDS_HPP

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "base/list.hpp"
#include "base/text_view.hpp"
#include "model/symbols.hpp"
#include "support/description.hpp"
#include "text/words.hpp"

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

inline bool is_long(const char* name) { return !zelk::fits_inline(zelk::view(name)); }

/// Whether a name is cut that has more characters than the format's: that of a message or signal
/// behind a message with the same identifier, and any whose attribute the file uses otherwise.
inline bool has_lost_names(const msgblk* messages, const attr_def* definitions) {
  std::set<std::uint32_t> ids;
  for (const msgblk& message : zelk::each(messages)) {
    const auto has_long_name = [](const sigblk& signal) { return is_long(signal.name); };
    if (ids.insert(message.id).second) continue;
    if (is_long(message.name) || zelk::find_first(message.signals, has_long_name)) return true;
  }
  return zelk::find_first(definitions, [](const attr_def& definition) {
           return definition.value_type != ZELK_ATTR_STRING &&
                  std::ranges::count(zelk::kLongNameAttributes, definition.name) != 0;
         }) != nullptr;
}

#endif
