#include "report/message_data.hpp"

#include <fmt/format.h>

#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "report/layout_data.hpp"
#include "term/text.hpp"

namespace zelk::tool {

using check::number_text;
using nlohmann::json;

MessageData::MessageData(EncodedDatabase database, const ElementIds& ids)
    : database_(database), ids_(ids), groups_(database.records) {}

std::string MessageData::text(std::string_view record_text) const {
  return to_utf8(record_text, database_.encoding);
}

json MessageData::row(const msgblk& message) const {
  return {{"element", ids_.of(&message)},
          {"name", text(view(message.name))},
          {"id", check::padded_id(message.id)},
          {"format", check::id_format(message.id)},
          {"length", message.dlc},
          {"signals", each(message.signals).size()},
          {"cycle", ""},
          {"senders", ""},
          {"receivers", ""},
          {"comment", ""}};
}

json MessageData::section(const msgblk& message) const {
  json signals = json::array();
  for (const sigblk& record : each(message.signals)) signals.push_back(signal(record));
  return {{"element", ids_.of(&message)},
          {"name", text(view(message.name))},
          {"id", check::padded_id(message.id)},
          {"id_words", check::shown_id(message.id)},
          {"length", counted(message.dlc, "byte")},
          {"j1939", groups_.description(message).value_or("")},
          {"layout", layout_data(message, database_.encoding, {.element = ids_.of(&message)})},
          {"has_signals", !signals.empty()},
          {"signals", std::move(signals)}};
}

json MessageData::signal(const sigblk& signal) const {
  return {{"element", ids_.of(&signal)},
          {"name", text(view(signal.name))},
          {"start", signal.start_bit},
          {"length", signal.length},
          {"coding", fmt::format("{}, {}", check::byte_order(signal.flags),
                                 check::number_format(signal.flags, signal.value_type))},
          {"factor", number_text(signal.factor)},
          {"offset", number_text(signal.offset)},
          {"range", number_text(signal.minimum) + " to " + number_text(signal.maximum)},
          {"unit", text(view(signal.unit))},
          {"receivers", ""},
          {"comment", nullptr}};
}

}  // namespace zelk::tool
