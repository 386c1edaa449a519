#include "report/signal_data.hpp"

#include <fmt/format.h>

#include <unordered_map>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/seeded_hash.hpp"
#include "check/objects/record_words.hpp"
#include "report/record_data.hpp"

namespace zelk::tool {

using check::number_text;
using nlohmann::json;

namespace {

/// The numbers of nodes, from 1, in the list of receivers that the message has.
using ReceiverNumbers = std::unordered_map<const symblk*, std::size_t>;

ReceiverNumbers receiver_numbers(const msgblk& message) {
  ReceiverNumbers numbers;
  for (const Receiver& receiver : Traffic::receivers(message))
    numbers.emplace(receiver.node, numbers.size() + 1);
  return numbers;
}

/// "1,3": the names would stand on the page a thousand times.
std::string receivers_text(const sigblk& signal, const ReceiverNumbers& numbers) {
  std::string text;
  for (const rxblk& link : each(signal.receivers)) {
    if (!link.node) continue;
    text += (text.empty() ? "" : ",") + std::to_string(numbers.at(link.node));
  }
  return text;
}

/// The values of attributes between the signal and nodes that receive it.
json receiver_attributes(const ReportContext& context, const sigblk& signal) {
  json list = json::array();
  for (const rxblk& link : each(signal.receivers)) {
    if (!link.node || !link.attrs) continue;
    list.push_back({{"name", context.text(view(link.node->name))},
                    {"attributes", attributes_data(link.attrs, context.database.encoding)}});
  }
  return list;
}

/// {"element", "name", "values"} of the multiplexor; null for a signal that is always there.
json selector_data(const ReportContext& context, const sigblk& signal) {
  if (!is_multiplexed(signal)) return nullptr;
  json data = signal.mux_signal ? context.link(signal.mux_signal, view(signal.mux_signal->name))
                                : json{{"element", ""}, {"name", "(no multiplexor)"}};
  data["values"] = signal.mux_ranges ? check::presence_values(signal) : "no value";
  return data;
}

/// The element of a signal. It is empty when no other object on the page links to it, and the
/// script can tell it from the message and the name: 20 bytes for each of thousands are much.
std::string anchor_of(const ReportContext& context, const sigblk& signal) {
  std::string element = context.ids.of(&signal);
  if (context.linked.contains(&signal) || context.findings.by_record.contains(&signal))
    return element;
  const std::string_view prefix = "message-";
  const std::string message = context.ids.of(signal.message).substr(prefix.size());
  return element == message + "." + context.text(view(signal.name)) ? "" : element;
}

json signal_data(const ReportContext& context, const sigblk& signal,
                 const ReceiverNumbers& receivers) {
  const Encoding encoding = context.database.encoding;
  json data = context.link(&signal, view(signal.name));
  data["anchor"] = anchor_of(context, signal);
  data["start"] = signal.start_bit;
  data["length"] = signal.length;
  data["coding"] = fmt::format("{}, {}", check::byte_order(signal.flags),
                               check::number_format(signal.flags, signal.value_type));
  data["factor"] = number_text(signal.factor);
  data["offset"] = number_text(signal.offset);
  data["range"] = number_text(signal.minimum) + " to " + number_text(signal.maximum);
  data["unit"] = context.text(view(signal.unit));
  data["receivers"] = receivers_text(signal, receivers);
  data["multiplexor"] = is_multiplexor(signal);
  data["selector"] = selector_data(context, signal);
  data["type"] =
      signal.sigtype ? context.link(signal.sigtype, view(signal.sigtype->name)) : json(nullptr);
  data["values"] = context.value_lists.data(signal.values);
  data["comment"] = text_data(view(signal.comment), encoding);
  data["attributes"] = attributes_data(signal.attrs, encoding);
  data["relations"] = receiver_attributes(context, signal);
  data["findings"] = context.findings_of(&signal);
  return data;
}

}  // namespace

json signals_data(const ReportContext& context, const msgblk& message) {
  const ReceiverNumbers receivers = receiver_numbers(message);
  json signals = json::array();
  for (const sigblk& signal : each(message.signals))
    signals.push_back(signal_data(context, signal, receivers));
  return signals;
}

std::string take_usual_coding(json& signals) {
  std::unordered_map<std::string, std::size_t, SeededHash> counts;
  for (const json& signal : signals) ++counts[signal["coding"].get<std::string>()];
  std::string usual;
  for (const json& signal : signals) {
    const std::string coding = signal["coding"];
    if (usual.empty() || counts[coding] > counts[usual]) usual = coding;
  }
  for (json& signal : signals)
    if (signal["coding"] == usual) signal["coding"] = "";
  return usual;
}

}  // namespace zelk::tool
