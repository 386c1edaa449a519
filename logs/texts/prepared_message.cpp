#include "logs/texts/prepared_message.hpp"

namespace zelk::logs {

PreparedSignal::PreparedSignal(const sigblk& signal, std::size_t position,
                               const FrameOptions& options, const NamedDatabase& database)
    : index(position), numbers(signal) {
  const std::string name = database.text_of(signal.name);
  const std::string unit = options.raw ? "" : database.text_of(signal.unit);
  texts = options.format.signal_texts(name, unit);
  if (options.numbers) return;
  descriptions = spelled_descriptions(signal, [&](const char* text) {
    return options.format.description_text(name, database.text_of(text));
  });
}

void append_value(LineBuffer& out, const PreparedSignal& signal, std::int64_t value, bool raw,
                  NonFinite non_finite) {
  char* const at = out.room(kNumberBytes);
  out.end_at(raw ? signal.numbers.put_raw(at, value, non_finite)
                 : signal.numbers.put(at, value, non_finite));
}

PreparedMessage::PreparedMessage(const msgblk& message, const NamedDatabase& database,
                                 const NameFilter& choice, const FrameOptions& options)
    : decoder(message), length_bytes(message.dlc), needs_signal(!choice.signals.empty()) {
  const std::string owner = database.text_of(message.name);
  name = options.format.message_text(owner);
  for (std::size_t i = 0; i < decoder.SignalCount(); ++i) {
    const sigblk& signal = decoder.Signal(i);
    if (choice.takes_signal(database.text_of(signal.name), owner))
      signals.emplace_back(signal, i, options, database);
  }
  is_shown = choice.takes_message(owner) && !(needs_signal && signals.empty());
}

}  // namespace zelk::logs
