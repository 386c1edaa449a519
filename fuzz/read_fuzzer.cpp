// Reads any bytes as a database, asks it some questions, and releases it. The sanitizers judge.

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/list.hpp"
#include "expect.hpp"
#include "support/lists.hpp"

namespace {

/// Every cross-reference of a signal must lead to a living record.
void visit(const sigblk& signal) {
  for (const rxblk& link : zelk::each(signal.receivers)) std::string(link.node->name);
  for (const attr& value : zelk::each(signal.attrs)) std::string(value.def->name);
  if (signal.mux_signal) std::string(signal.mux_signal->name);
  if (signal.sigtype) std::string(signal.sigtype->name);
  expect(signal.message->signal_count != 0, "a signal that is not counted");
}

void visit(const Lists& lists) {
  for (const msgblk& message : zelk::each(lists.messages)) {
    for (const sigblk& signal : zelk::each(message.signals)) visit(signal);
    zelk_get_j1939_message(lists.messages, lists.definitions, message.id, ZELK_J1939_FRAME_FORMAT);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto* const text = reinterpret_cast<const char*>(data);
  Lists lists;
  zelk_clear_error_text();
  // The second read extends the records of the first.
  for (int pass = 0; pass < 2; ++pass) lists.read_by(zelk_try_read_text, text, size);
  visit(lists);
  return 0;
}
