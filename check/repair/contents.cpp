#include "check/repair/contents.hpp"

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "base/list.hpp"

namespace zelk::check {

namespace {

/// By the indexes of statements: a readable message, or a readable signal and its message.
template <typename AddMessage, typename AddSignal>
void for_each_object(const Document& document, AddMessage add_message, AddSignal add_signal) {
  for (std::uint32_t i = 0; i < document.statements.size(); ++i) {
    const Statement& statement = document.statements[i];
    if (!statement.is_readable) continue;
    if (statement.kind == Word::kMessage) add_message(i);
    const bool has_owner = statement.kind == Word::kSignal && statement.owner != kNoStatement;
    if (has_owner && document.statements[statement.owner].is_readable)
      add_signal(statement.owner, i);
  }
}

/// The words of a statement, with a line feed behind each. NUL bytes are none of their characters.
std::string words_of(const Document& document, std::uint32_t statement) {
  std::string words;
  for (const Token& token : document.tokens_of(document.statements[statement]))
    words.append(document.text_of(token)).append("\n");
  std::erase(words, '\0');
  return words;
}

}  // namespace

Contents contents_of(const RecordsView& records) {
  Contents contents;
  for (const msgblk& message : each(records.messages)) {
    ++contents.messages;
    contents.signals += each(message.signals).size();
  }
  return contents;
}

Contents contents_of(const Document& document) {
  Contents contents;
  for_each_object(
      document, [&](std::uint32_t) { ++contents.messages; },
      [&](std::uint32_t, std::uint32_t) { ++contents.signals; });
  return contents;
}

Contents distinct_contents_of(const Document& document) {
  std::map<std::uint32_t, std::set<std::string>> messages;  // their signals, by statement
  for_each_object(
      document, [&](std::uint32_t message) { messages[message]; },
      [&](std::uint32_t message, std::uint32_t signal) {
        messages[message].insert(words_of(document, signal));
      });
  Contents contents;
  std::set<std::string> seen;
  for (const auto& [index, signals] : messages) {
    std::string words = words_of(document, index);
    for (const std::string& signal : signals) words += signal;
    if (!seen.insert(words).second) continue;
    ++contents.messages;
    contents.signals += signals.size();
  }
  return contents;
}

}  // namespace zelk::check
