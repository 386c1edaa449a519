// Mends any bytes. What comes out is read strictly, has all messages and signals that can be seen
// in the input, and needs no further mend; what is refused has its faults. The sanitizers judge,
// too.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "check/includes/mend.hpp"
#include "check/repair/contents.hpp"
#include "check/statements/document.hpp"
#include "expect.hpp"
#include "support/lists.hpp"

namespace {

using namespace zelk::check;

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
  const Contents before = distinct_contents_of(read_document(first.source));
  const Contents after = contents_of({.messages = lists.messages});
  expect(after.messages >= before.messages, "a message is lost", first.text);
  expect(after.signals >= before.signals, "a signal is lost", first.text);
  const MendedFile second = mended(first.text);
  expect(second.outcome == Outcome::kUnneeded, "to be mended twice", first.text);
  return 0;
}
