// Mends any bytes. What comes out is read strictly, has all messages and signals that can be seen
// in the input, and needs no further mend; what is refused has its faults. The sanitizers judge,
// too.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "base/list.hpp"
#include "check/includes/mend.hpp"
#include "check/statements/document.hpp"
#include "expect.hpp"
#include "support/lists.hpp"

namespace {

using namespace zelk::check;

struct Counts {
  std::size_t messages = 0;
  std::size_t signals = 0;
};

Counts counts_of(const Lists& lists) {
  Counts counts;
  for (const msgblk& message : zelk::each(lists.messages)) {
    ++counts.messages;
    counts.signals += zelk::each(message.signals).size();
  }
  return counts;
}

/// The words of a statement, with a line feed behind each. NUL bytes are none of their characters.
std::string words_of(const Document& document, const Statement& statement) {
  std::string words;
  for (const Token& token : document.tokens_of(statement))
    words.append(document.text_of(token)).append("\n");
  std::erase(words, '\0');
  return words;
}

/// Of what can be read in a text, whatever else is wrong there; what stands there twice, word for
/// word, counts once.
Counts counts_of(const Document& document) {
  std::map<std::uint32_t, std::set<std::string>> messages;  // their signals, by statement
  for (std::uint32_t i = 0; i < document.statements.size(); ++i) {
    const Statement& statement = document.statements[i];
    if (!statement.is_readable) continue;
    if (statement.kind == Word::kMessage) messages[i];
    const auto owner = messages.find(statement.owner);
    if (statement.kind == Word::kSignal && owner != messages.end())
      owner->second.insert(words_of(document, statement));
  }
  Counts counts;
  std::set<std::string> seen;
  for (const auto& [index, signals] : messages) {
    std::string words = words_of(document, document.statements[index]);
    for (const std::string& signal : signals) words += signal;
    if (!seen.insert(words).second) continue;
    ++counts.messages;
    counts.signals += signals.size();
  }
  return counts;
}

MendedFile mended(const std::string& text) {
  zelk_clear_error_text();
  return mend(Source("input", text), {});
}

/// The search for faults knows all reasons of the reader.
bool is_explained(const Findings& findings) {
  return std::ranges::find(findings.list, name_of(FaultKind::kRefused), &Finding::rule) ==
         findings.list.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const MendedFile first = mended(input);
  expect(is_explained(first.faults) && is_explained(first.mends), "refused for an unknown reason",
         input);
  if (first.outcome == Outcome::kUnmendable) {
    expect(!first.faults.list.empty(), "refused without a fault", input);
    return 0;
  }
  const bool is_changed = first.outcome == Outcome::kMended;
  expect(is_changed != first.mends.list.empty(), "a mend that is not told, or none", first.text);
  expect(is_changed || first.text == input, "changed without a mend", first.text);
  Lists lists;
  zelk_clear_error_text();
  const std::uint32_t error =
      lists.read_by(zelk_try_read_text, first.text.c_str(), first.text.size());
  expect(error == ZELK_OK, "not read", first.text);
  if (!is_changed) return 0;  // all that the reader sees is there
  const Counts before = counts_of(read_document(first.source));
  const Counts after = counts_of(lists);
  expect(after.messages >= before.messages, "a message is lost", first.text);
  expect(after.signals >= before.signals, "a signal is lost", first.text);
  const MendedFile second = mended(first.text);
  expect(second.outcome == Outcome::kUnneeded, "to be mended twice", first.text);
  return 0;
}
