#include "report/bus_load.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/frame_id.hpp"
#include "base/list.hpp"
#include "check/lint/known_attributes.hpp"
#include "check/objects/record_words.hpp"
#include "term/text.hpp"

namespace zelk::tool {

using check::KnownAttribute;
using nlohmann::json;

namespace {

constexpr std::uint32_t kClassicBytes = 8;
constexpr std::uint32_t kFdBytes = 64;
constexpr std::size_t kMostMessages = 20;  // that the page lists

Load& operator+=(Load& sum, const Load& load) {
  sum.best += load.best;
  sum.worst += load.worst;
  return sum;
}

/// What a network attribute says, in bit/s; 0 for nothing.
double stated_rate(const check::RecordsView& records, const char* name) {
  constexpr double kSlowest = 5000;
  const KnownAttribute attribute(records.attr_defs, ZELK_OBJ_NETWORK, name);
  const double rate = attribute.number(records.attr_values).value_or(0);
  return rate > 0 && rate < kSlowest ? rate * 1000 : std::max(rate, 0.0);
}

BitRate nominal_rate(const ZelkDatabase& database, const check::RecordsView& records,
                     const BitRates& given) {
  constexpr double kUsual = 500'000;
  if (given.nominal) return {*given.nominal, "given"};
  if (const double rate = stated_rate(records, "Baudrate"); rate > 0)
    return {rate, "attribute Baudrate"};
  const btlblk* const timing = database.bit_timings;
  if (timing && timing->baudrate > 0) return {timing->baudrate * 1000.0, "bit timing"};
  return {kUsual, "assumed"};
}

BitRate data_rate(const check::RecordsView& records, const BitRates& given) {
  constexpr double kUsual = 2'000'000;
  if (given.data) return {*given.data, "given"};
  if (const double rate = stated_rate(records, "BaudrateCANFD"); rate > 0)
    return {rate, "attribute BaudrateCANFD"};
  return {kUsual, "assumed"};
}

/// Gathers the loads.
class LoadCounter {
 public:
  LoadCounter(const ZelkDatabase& database, const BitRates& given)
      : database_(database),
        records_{database.nodes, database.messages, database.env_vars, database.attr_defs,
                 database.attr_values},
        known_(records_),
        cycle_time_(cycle_time(database)),
        rate_switch_(database.attr_defs, ZELK_OBJ_MESSAGE, "CANFD_BRS") {
    result_.bit_rate = nominal_rate(database, records_, given);
    result_.data_bit_rate = data_rate(records_, given);
  }

  BusLoad count() {
    for (const msgblk& message : each(database_.messages)) add(message);
    const auto worst = [](const auto& entry) { return entry.load.worst; };
    std::ranges::stable_sort(result_.messages, std::ranges::greater(), worst);
    std::ranges::stable_sort(result_.senders, std::ranges::greater(), worst);
    return std::move(result_);
  }

 private:
  void add(const msgblk& message) {
    const double cycle_ms = cycle_time_.number(message.attrs).value_or(0);
    if (!(cycle_ms > 0)) {
      ++result_.without_cycle;
    } else if (const auto length = length_of(message)) {
      add(message, cycle_ms, *length);
    } else {
      ++result_.without_length;
    }
  }

  void add(const msgblk& message, double cycle_ms, const FrameLength& length) {
    const auto part = [&](const BitCount& bits) {
      return bits.seconds(result_.bit_rate.bits_per_second, result_.data_bit_rate.bits_per_second) *
             1000 / cycle_ms;
    };
    const Load load{part(length.best), part(length.worst)};
    result_.messages.push_back({&message, cycle_ms, length, load});
    result_.sum += load;
    const auto [entry, is_new] =
        sender_index_.try_emplace(message.transmitter, result_.senders.size());
    if (is_new) result_.senders.push_back({message.transmitter});
    SenderLoad& sender = result_.senders[entry->second];
    ++sender.message_count;
    sender.load += load;
  }

  std::optional<FrameLength> length_of(const msgblk& message) {
    constexpr std::uint32_t kMostTransported = 255 * 7;
    const bool is_extended = (message.id & ZELK_ID_EXTENDED) != 0;
    const std::uint32_t bytes = message.dlc;
    const bool is_fd =
        known_.frame_format.text(message.attrs).value_or("").find("FD") != std::string_view::npos;
    if (bytes <= kClassicBytes && !is_fd) return classic_length(is_extended, bytes);
    if (!is_fd && known_.is_j1939(message))
      return bytes <= kMostTransported ? std::optional(transported_length(bytes)) : std::nullopt;
    if (bytes > kFdBytes) return std::nullopt;
    result_.has_fd = true;
    return fd_length(is_extended, bytes, switches_rate(message));
  }

  /// Frames of CAN FD do unless the database says no.
  bool switches_rate(const msgblk& message) const {
    return rate_switch_.text(message.attrs).value_or("1") != "0" &&
           rate_switch_.number(message.attrs).value_or(1) != 0;
  }

  const ZelkDatabase& database_;
  check::RecordsView records_;
  check::KnownAttributes known_;
  KnownAttribute cycle_time_;
  KnownAttribute rate_switch_;
  std::unordered_map<const symblk*, std::size_t> sender_index_;
  BusLoad result_{};
};

std::string percent(double part) { return fmt::format("{:.1f} %", part * 100); }

std::string rate_text(const BitRate& rate) {
  const bool is_fast = rate.bits_per_second >= 1e6;
  return check::number_text(rate.bits_per_second / (is_fast ? 1e6 : 1e3)) +
         (is_fast ? " Mbit/s" : " kbit/s");
}

/// The members that a load has in tables.
json load_data(const Load& load) {
  const auto width = [](double part) { return fmt::format("{:.2f}", std::min(part, 1.0) * 100); };
  return {{"best", percent(load.best)},
          {"worst", percent(load.worst)},
          {"best_width", width(load.best)},
          {"worst_width", width(load.worst)}};
}

json message_data(const MessageLoad& entry, Encoding encoding, const ElementIds& ids) {
  json data = load_data(entry.load);
  data["element"] = ids.of(entry.message);
  data["name"] = to_utf8(view(entry.message->name), encoding);
  data["cycle"] = check::number_text(entry.cycle_ms);
  data["best_bits"] = entry.length.best.sum();
  data["worst_bits"] = entry.length.worst.sum();
  return data;
}

json sender_data(const SenderLoad& entry, Encoding encoding, const ElementIds& ids) {
  json data = load_data(entry.load);
  data["element"] = entry.node ? ids.of(entry.node) : "";
  data["name"] = entry.node ? to_utf8(view(entry.node->name), encoding) : "no sender";
  data["count"] = entry.message_count;
  return data;
}

}  // namespace

KnownAttribute cycle_time(const ZelkDatabase& database) {
  KnownAttribute usual(database.attr_defs, ZELK_OBJ_MESSAGE, "GenMsgCycleTime");
  if (usual.is_defined()) return usual;
  return {database.attr_defs, ZELK_OBJ_MESSAGE, "CycleTime"};
}

BusLoad bus_load(const ZelkDatabase& database, const BitRates& given) {
  return LoadCounter(database, given).count();
}

json bus_load_data(const BusLoad& load, Encoding encoding, const ElementIds& ids) {
  json messages = json::array();
  json senders = json::array();
  for (const MessageLoad& entry : load.messages) {
    if (messages.size() == kMostMessages) break;
    messages.push_back(message_data(entry, encoding, ids));
  }
  for (const SenderLoad& entry : load.senders) senders.push_back(sender_data(entry, encoding, ids));
  json data = load_data(load.sum);
  data["rate"] = rate_text(load.bit_rate);
  data["rate_source"] = load.bit_rate.source;
  data["data_rate"] = load.has_fd ? rate_text(load.data_bit_rate) : "";
  data["data_rate_source"] = load.data_bit_rate.source;
  data["cyclic"] = load.messages.empty() ? "" : counted(load.messages.size(), "cyclic message");
  data["is_too_much"] = load.sum.worst > 1;
  data["without_cycle"] =
      load.without_cycle > 0 ? counted(load.without_cycle, "message") : std::string();
  data["without_length"] =
      load.without_length > 0 ? counted(load.without_length, "message") : std::string();
  data["listed"] = counted(messages.size(), "message");
  data["loads"] = std::move(messages);
  data["senders"] = std::move(senders);
  return data;
}

}  // namespace zelk::tool
