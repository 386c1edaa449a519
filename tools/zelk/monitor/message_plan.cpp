#include "monitor/message_plan.hpp"

#include "base/multiplexing.hpp"
#include "base/text_view.hpp"
#include "zelk/database.hpp"

namespace zelk::tool {

CycleTimes::CycleTimes(const ZelkDatabase& database, const std::string& attribute)
    : cycle_time_(database.attr_defs, ZELK_OBJ_MESSAGE, attribute),
      send_type_(database.attr_defs, ZELK_OBJ_MESSAGE, "GenMsgSendType") {}

std::int64_t CycleTimes::stated(const msgblk& message) const {
  constexpr double kNanoseconds = 1e6;
  constexpr double kMostMilliseconds = 1e9;  // eleven days
  const double milliseconds = cycle_time_.number(message.attrs).value_or(0);
  const bool can_be = milliseconds > 0 && milliseconds <= kMostMilliseconds;
  return can_be ? static_cast<std::int64_t>(milliseconds * kNanoseconds) : 0;
}

bool CycleTimes::is_permanent(const msgblk& message) const {
  return !send_type_.is_defined() || check::is_cyclic(send_type_.text(message.attrs).value_or(""));
}

MessagePlan::MessagePlan(const msgblk& message, Encoding encoding, const NameFilter& filter,
                         const CycleTimes& cycles)
    : decoder(message),
      name(to_utf8(view(message.name), encoding)),
      stated_cycle(cycles.stated(message)),
      expected_cycle(cycles.is_permanent(message) ? stated_cycle : 0) {
  for (std::size_t i = 0; i < decoder.SignalCount(); ++i) {
    const sigblk& signal = decoder.Signal(i);
    const auto text = [encoding](const char* of) { return to_utf8(view(of), encoding); };
    const std::string signal_name = text(signal.name);
    if (is_multiplexor(signal)) {
      multiplexors.push_back(i);
      multiplexor_names.push_back(signal_name);
    }
    if (filter.takes_signal(signal_name, name)) {
      signals.push_back({i, signal_name, to_utf8(view(signal.unit), encoding),
                         SignalNumbers(signal), spelled_descriptions(signal, text)});
    }
  }
  is_shown = filter.takes_message(name) && !(signals.empty() && !filter.signals.empty());
}

}  // namespace zelk::tool
