#include "kcd/signal_import.hpp"

#include "base/signal_bits.hpp"
#include "common/records.hpp"
#include "kcd/format.hpp"

namespace zelk::modules::kcd {
namespace {

constexpr std::int64_t kSmallestRaw = INT32_MIN;
constexpr std::int64_t kLargestRaw = UINT32_MAX;

void take_parts(const Element& element, std::initializer_list<std::string_view> groups) {
  element.take({.attributes = {"name", "offset", "length", "endianess"},
                .once = {"Notes", "Consumer", "Value", "LabelSet"},
                .many = groups});
}

void read_geometry(const Element& element, SignalData& signal) {
  signal.start_bit = static_cast<std::uint16_t>(element.whole("offset", 0, kMaxDataBits - 1));
  signal.length = static_cast<std::uint16_t>(element.whole("length", 1, kMaxDataBits, 1));
  const std::string_view order = element.find("endianess").value_or("little");
  if (order == "big") {
    signal.flags |= ZELK_SIGNAL_MOTOROLA;
  } else if (order != "little") {
    element.fail("endianess=\"" + std::string(order) + "\" is neither little nor big");
  }
  if (end_byte(signal) > kMaxDataBytes) {
    element.fail("ends behind byte " + std::to_string(kMaxDataBytes));
  }
}

void read_type(const Element& value, SignalData& signal) {
  const std::string_view type = value.find("type").value_or("unsigned");
  if (type == "unsigned") return;
  // Databases mark IEEE signals as signed by custom; their sign bit belongs to the format.
  signal.flags |= ZELK_SIGNAL_SIGNED;
  if (type == "signed") return;
  if (type == "single") {
    signal.value_type = ZELK_VALUE_IEEE_SINGLE;
  } else if (type == "double") {
    signal.value_type = ZELK_VALUE_IEEE_DOUBLE;
  } else {
    value.fail("type=\"" + std::string(type) + "\" is none of unsigned, signed, single and double");
  }
}

void read_value(const Element& value, SignalData& signal) {
  value.take({.attributes = {"type", "slope", "intercept", "unit", "min", "max"}});
  read_type(value, signal);
  signal.factor = value.real("slope", 1);
  signal.offset = value.real("intercept", 0);
  signal.minimum = value.real("min", 0);
  signal.maximum = value.real("max", 0);
  const std::string_view unit = value.find("unit").value_or("");
  signal.unit = value.stored(unit);
  if (signal.unit.size() > ZELK_INLINE_NAME_MAX) {
    value.fail("unit=\"" + std::string(unit) + "\" has more than " +
               std::to_string(ZELK_INLINE_NAME_MAX) + " characters");
  }
}

void read_label(const Element& label, SignalData& signal) {
  label.take({.attributes = {"name", "value"}, .idle = {{"type", "value"}}});
  // Values from 2^31 on become negative: records hold the 32 bits with a sign.
  const auto value = static_cast<std::int32_t>(label.whole("value", kSmallestRaw, kLargestRaw));
  signal.descriptions.emplace_back(value, label.stored(label.text("name")));
}

void read_label_group(const Element& group, SignalData& signal) {
  group.take({.attributes = {"name", "from", "to"}, .idle = {{"type", "value"}}});
  const std::int64_t from = group.whole("from", kSmallestRaw, kLargestRaw);
  const std::int64_t to = group.whole("to", from, kLargestRaw);
  if (to - from >= std::int64_t{kMaxExpandedValues}) {
    group.fail("from " + std::to_string(from) + " to " + std::to_string(to) + " are more than " +
               std::to_string(kMaxExpandedValues) + " values");
  }
  const std::string text = group.stored(group.text("name"));
  for (std::int64_t value = from; value <= to; ++value) {
    signal.descriptions.emplace_back(static_cast<std::int32_t>(value), text);
  }
}

void read_labels(const Element& labels, SignalData& signal) {
  labels.take({.many = {"Label", "LabelGroup"}});
  labels.each(nullptr, [&signal](const Element& element) {
    if (element.tag() == "Label") read_label(element, signal);
    if (element.tag() == "LabelGroup") read_label_group(element, signal);
  });
}

}  // namespace

void SignalData::fill(sigblk& record) const {
  assign_text(record.name, name);
  record.start_bit = start_bit;
  record.length = length;
  record.flags = flags;
  record.value_type = value_type;
  record.factor = factor;
  record.offset = offset;
  record.minimum = minimum;
  record.maximum = maximum;
  assign_inline(record.unit, unit, name);
  if (!comment.empty()) assign_text(record.comment, comment);
  record.receiver_count = static_cast<std::uint16_t>(receivers.size());
  ListTail<rxblk> links(record.receivers);
  for (symblk* const node : receivers) append_new(links).node = node;
  ListTail<val> values(record.values);
  for (const auto& [value, text] : descriptions) {
    val& description = append_new(values);
    description.value = value;
    assign_text(description.text, text);
  }
}

SignalData read_signal(const Element& element, const Nodes& nodes) {
  SignalData signal;
  if (element.tag() == "Multiplex") {
    take_parts(element, {"MuxGroup"});
    signal.flags = ZELK_SIGNAL_MULTIPLEXOR;
  } else {
    take_parts(element, {});
  }
  signal.name = element.object_name("name");
  read_geometry(element, signal);
  if (const auto value = element.child("Value")) read_value(*value, signal);
  if (const auto notes = element.child("Notes")) {
    notes->take({.has_text = true});
    signal.comment = notes->content();
  }
  signal.receivers = nodes.referred(element.child("Consumer"));
  if (const auto labels = element.child("LabelSet")) read_labels(*labels, signal);
  return signal;
}

}  // namespace zelk::modules::kcd
