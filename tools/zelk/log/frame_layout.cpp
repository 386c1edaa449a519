#include "log/frame_layout.hpp"

#include <algorithm>
#include <limits>

#include "input/database.hpp"
#include "term/quoting.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

std::string lead_of(const sigblk& signal, FrameFormat format, Encoding encoding) {
  const std::string name = name_text(to_utf8(view(signal.name), encoding), format);
  switch (format) {
    case FrameFormat::kJson:
      return ',' + name + ':';
    case FrameFormat::kCsv:
      return ',' + name + ',';
    default:
      return ' ' + name + '=';
  }
}

std::string trail_of(const sigblk& signal, const FrameOptions& options, Encoding encoding) {
  const std::string unit = options.raw ? "" : to_utf8(signal.unit, encoding);
  if (options.format == FrameFormat::kCsv) return ',' + csv_field(unit) + ',';
  if (options.format == FrameFormat::kJson || unit.empty()) return "";
  return ' ' + escaped(unit);
}

/// @param name  of the signal
std::string description_text(std::string_view name, std::string_view text, FrameFormat format) {
  switch (format) {
    case FrameFormat::kJson:
      return ',' + json_string(name) + ':' + json_string(text);
    case FrameFormat::kCsv:
      return csv_field(text);
    default:
      return ' ' + in_quotes(text);
  }
}

DescriptionTexts descriptions_of(const sigblk& signal, const FrameOptions& options,
                                 Encoding encoding) {
  DescriptionTexts texts;
  if (options.numbers || is_ieee(signal.value_type)) return texts;
  const std::string name = to_utf8(view(signal.name), encoding);
  for (const val& value : each(signal.values)) {
    texts.add(static_cast<std::uint32_t>(value.value),
              description_text(name, to_utf8(view(value.text), encoding), options.format));
  }
  return texts;
}

}  // namespace

// Texts are few: a new one finds its place among those that are there.
void DescriptionTexts::add(std::uint32_t value, std::string text) {
  const auto at = std::ranges::lower_bound(entries_, value, {}, &Entry::value);
  if (at == entries_.end() || at->value != value) entries_.insert(at, {value, std::move(text)});
}

std::string_view DescriptionTexts::find(std::int64_t raw) const {
  if (entries_.empty()) return {};
  if (raw < std::numeric_limits<std::int32_t>::min() ||
      raw > std::numeric_limits<std::uint32_t>::max()) {
    return {};
  }
  const auto value = static_cast<std::uint32_t>(raw);
  const auto at = std::ranges::lower_bound(entries_, value, {}, &Entry::value);
  return at != entries_.end() && at->value == value ? at->text : std::string_view();
}

std::string name_text(std::string_view name, FrameFormat format) {
  switch (format) {
    case FrameFormat::kJson:
      return json_string(name);
    case FrameFormat::kCsv:
      return csv_field(name);
    default:
      return escaped(utf8(name));
  }
}

SignalLayout::SignalLayout(const sigblk& signal, std::size_t position, const FrameOptions& options,
                           Encoding encoding)
    : index(position),
      value_type(signal.value_type),
      is_signed(signal.flags & ZELK_SIGNAL_SIGNED),
      factor(signal.factor),
      offset(signal.offset),
      scale(signal.factor, signal.offset),
      lead(lead_of(signal, options.format, encoding)),
      trail(trail_of(signal, options, encoding)),
      descriptions(descriptions_of(signal, options, encoding)) {}

MessageLayout::MessageLayout(const ZelkFrameDecoder& of, const FrameOptions& options,
                             Encoding encoding)
    : decoder(&of),
      name(name_text(to_utf8(view(of.Message().name), encoding), options.format)),
      needs_signal(!options.filter.signals.empty()) {
  const msgblk& message = of.Message();
  for (std::size_t i = 0; i < of.SignalCount(); ++i) {
    if (options.filter.takes(message, of.Signal(i)))
      signals.emplace_back(of.Signal(i), i, options, encoding);
  }
  is_shown = options.filter.takes(message) && !(needs_signal && signals.empty());
}

}  // namespace zelk::tool
