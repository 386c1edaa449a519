#include "monitor/row_decoder.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zelk::tool {

void RowDecoder::decode(const MessagePlan& plan, std::span<const unsigned char> data) {
  raw_.resize(std::max(raw_.size(), plan.decoder.SignalCount()));
  present_.resize(std::max(present_.size(), plan.decoder.PresenceWords()));
  plan.decoder.DecodeRaw(data.data(), data.size(), raw_.data(), present_.data());
}

const std::vector<std::int64_t>& RowDecoder::page_key(const MessagePlan& plan,
                                                      std::span<const unsigned char> data) {
  decode(plan, data);
  key_.clear();
  for (const std::size_t index : plan.multiplexors) {
    key_.push_back(is_present(index));
    key_.push_back(raw_[index]);
  }
  return key_;
}

std::string RowDecoder::page_name(const MessagePlan& plan) const {
  std::string name;
  for (std::size_t i = 0; i < plan.multiplexors.size(); ++i) {
    if (key_[2 * i] == 0) continue;
    name += fmt::format("{}{} = {}", name.empty() ? "" : ", ", plan.multiplexor_names[i],
                        key_[2 * i + 1]);
  }
  return name;
}

RowValues RowDecoder::make_signals(const MessagePlan& plan, std::span<const unsigned char> data,
                                   std::vector<SignalState>& signals) {
  // Padded with zeros, a frame reaches all of its signals.
  std::vector<unsigned char> whole(data.begin(), data.end());
  whole.resize(
      std::max<std::size_t>({whole.size(), plan.decoder.Message().dlc, ZelkFrame::kMostData}));
  decode(plan, whole);
  RowValues values;
  for (const SignalPlan& signal : plan.signals) {
    if (!data.empty() && !is_present(signal.index)) continue;
    values.push_back({&signal});
    signals.push_back({&plan.decoder.Signal(signal.index), signal.name, signal.unit});
  }
  return values;
}

void RowDecoder::update(const MessagePlan& plan, RowState& row, RowValues& values,
                        std::int64_t time) {
  decode(plan, row.data);
  for (std::size_t i = 0; i < values.size(); ++i) {
    SignalState& signal = row.signals[i];
    const std::size_t index = values[i].plan->index;
    const std::int64_t raw = raw_[index];
    const bool is_there = is_present(index);
    if (is_there && signal.is_present && raw != values[i].raw) signal.changed_at = time;
    signal.is_present = is_there;
    values[i].raw = raw;
  }
}

void RowDecoder::decode_physical(const MessagePlan& plan, std::span<const unsigned char> data) {
  physical_.resize(std::max(physical_.size(), plan.decoder.SignalCount()));
  present_.resize(std::max(present_.size(), plan.decoder.PresenceWords()));
  plan.decoder.Decode(data.data(), data.size(), physical_.data(), present_.data());
}

double RowDecoder::physical(const MessagePlan& plan, const RowState& row,
                            const SignalTrack& signal) {
  decode_physical(plan, row.data);
  return physical_[signal.plan->index];
}

void RowDecoder::spell(const MessagePlan& plan, RowState& row, const RowValues& values) {
  decode_physical(plan, row.data);
  std::array<char, kNumberBytes> number;
  for (std::size_t i = 0; i < values.size(); ++i) {
    SignalState& signal = row.signals[i];
    const auto& [of, raw] = values[i];
    signal.value = signal.is_present ? physical_[of->index] : 0;
    signal.spelled.assign(
        number.data(), signal.is_present ? of->numbers.put(number.data(), raw, NonFinite::kAsText)
                                         : number.data());
    signal.text = signal.is_present ? of->descriptions.find(raw) : std::string_view();
  }
}

}  // namespace zelk::tool
