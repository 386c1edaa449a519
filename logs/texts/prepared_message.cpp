#include "logs/texts/prepared_message.hpp"

#include <bit>
#include <cmath>
#include <limits>

#include "base/list.hpp"
#include "base/signal_bits.hpp"

namespace zelk::logs {

namespace {

PrintedDescriptions descriptions_of(const sigblk& signal, std::string_view name,
                                    const FrameOptions& options, const NamedDatabase& database) {
  PrintedDescriptions texts;
  if (options.numbers || is_ieee(signal)) return texts;
  for (const val& value : each(signal.values)) {
    texts.add(static_cast<std::uint32_t>(value.value),
              options.format.description_text(name, database.text_of(value.text)));
  }
  return texts;
}

void append_double(LineBuffer& out, double number, NonFinite non_finite) {
  if (non_finite == NonFinite::kAsNull && !std::isfinite(number)) return out.append("null");
  out.end_at(put_double(out.room(kNumberBytes), number));
}

/// The number in an IEEE signal, a single with no more digits than its bits are worth.
void append_ieee(LineBuffer& out, const PreparedSignal& signal, std::int64_t value,
                 NonFinite non_finite) {
  const double number = signal.ieee_number(value);
  if (signal.is_double || !std::isfinite(number)) return append_double(out, number, non_finite);
  out.end_at(put_float(out.room(kNumberBytes), static_cast<float>(number)));
}

}  // namespace

std::string_view PrintedDescriptions::find(std::int64_t raw) const {
  if (texts_.empty()) return {};
  if (raw < std::numeric_limits<std::int32_t>::min() ||
      raw > std::numeric_limits<std::uint32_t>::max()) {
    return {};
  }
  const auto found = texts_.find(static_cast<std::uint32_t>(raw));
  return found == texts_.end() ? std::string_view() : found->second;
}

PreparedSignal::PreparedSignal(const sigblk& signal, std::size_t position,
                               const FrameOptions& options, const NamedDatabase& database)
    : index(position),
      is_signed(zelk::is_signed(signal)),
      is_ieee(zelk::is_ieee(signal)),
      is_double(signal.value_type == ZELK_VALUE_IEEE_DOUBLE),
      factor(signal.factor),
      offset(signal.offset),
      scale(signal.factor, signal.offset) {
  const std::string name = database.text_of(signal.name);
  const std::string unit = options.raw ? "" : database.text_of(signal.unit);
  texts = options.format.signal_texts(name, unit);
  descriptions = descriptions_of(signal, name, options, database);
}

double PreparedSignal::ieee_number(std::int64_t raw) const {
  if (is_double) return std::bit_cast<double>(raw);
  return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(raw)));
}

void append_value(LineBuffer& out, const PreparedSignal& signal, std::int64_t value, bool raw,
                  NonFinite non_finite) {
  if (!signal.is_ieee) {
    char* const at = out.room(kNumberBytes);
    out.end_at(raw ? put_integer(at, value, signal.is_signed)
                   : signal.scale.put(at, value, signal.is_signed));
  } else if (raw || (signal.factor == 1 && signal.offset == 0)) {
    append_ieee(out, signal, value, non_finite);
  } else {
    append_double(out, signal.ieee_number(value) * signal.factor + signal.offset, non_finite);
  }
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
