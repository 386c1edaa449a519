#include "logs/transport/session.hpp"

#include <algorithm>

#include "zelk/records.h"

namespace zelk::logs {

namespace {

// In nanoseconds; the names are those of SAE J1939-21.
constexpr std::uint64_t kT1 = 750'000'000;      // between packets of a broadcast
constexpr std::uint64_t kT2T3 = 1'250'000'000;  // between frames of both stations

std::uint32_t message_id(const Control& announcement, const j1939::FrameId& frame) {
  j1939::FrameId message = frame;
  message.group = j1939::group_of_number(announcement.group_number);
  message.group.destination = frame.group.destination;
  return j1939::id_of(message) | ZELK_ID_EXTENDED;
}

}  // namespace

Session::Session(const Control& announcement, const j1939::FrameId& frame, std::int64_t time)
    : id_(message_id(announcement, frame)),
      group_number_(announcement.group_number),
      is_broadcast_(announcement.kind == ControlKind::kBroadcast),
      heard_(time),
      packets_(announcement.packets),
      data_(announcement.length_bytes) {}

bool Session::is_late(std::int64_t now) const {
  if (now == kZelkNoTime || heard_ == kZelkNoTime || now <= heard_) return false;
  // The difference of any two times fits.
  const std::uint64_t silence =
      static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(heard_);
  return silence > (is_broadcast_ ? kT1 : kT2T3);
}

/// Packets of a broadcast count up. A log that was recorded at both ends of a gateway, or with the
/// frames of the own station, has each of them twice.
bool Session::is_expected(std::size_t number, std::span<const unsigned char> bytes) const {
  if (number == 0) return false;
  if (!is_broadcast_ || number == seen_count_ + 1) return true;
  const auto own = std::span(data_).subspan((number - 1) * kPacketBytes);
  return number == seen_count_ && std::equal(bytes.begin(), bytes.end(), own.begin());
}

Session::Progress Session::take(std::span<const unsigned char> packet) {
  if (packet.empty()) return Progress::kContradiction;
  const std::size_t number = packet[0];
  const std::size_t before = number == 0 ? 0 : (number - 1) * kPacketBytes;
  if (before >= data_.size()) return Progress::kContradiction;
  const std::size_t count = std::min(kPacketBytes, data_.size() - before);
  if (count > packet.size() - 1) return Progress::kContradiction;
  const auto bytes = packet.subspan(1, count);
  if (!is_expected(number, bytes)) return Progress::kContradiction;
  std::copy(bytes.begin(), bytes.end(), data_.begin() + static_cast<std::ptrdiff_t>(before));
  if (!seen_[number]) ++seen_count_;
  seen_[number] = true;
  return seen_count_ == packets_ ? Progress::kComplete : Progress::kMore;
}

}  // namespace zelk::logs
