/// \file
/// One message while its packets come in.

#ifndef ZELK_LOGS_TRANSPORT_SESSION_HPP
#define ZELK_LOGS_TRANSPORT_SESSION_HPP

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "logs/transport/control.hpp"

namespace zelk::logs {

class Session {
 public:
  enum class Progress { kMore, kComplete, kContradiction };

  /// @param announcement  is consistent
  /// @param frame         that it came in
  /// @param time          of that frame
  Session(const Control& announcement, const j1939::FrameId& frame, std::int64_t time);

  /// Identifier of the message, with bit 31.
  std::uint32_t id() const { return id_; }
  std::uint32_t group_number() const { return group_number_; }
  std::span<const unsigned char> data() const { return data_; }

  /// Whether nothing was heard of the message for too long. Times that run backwards are no delay.
  bool is_late(std::int64_t now) const;
  /// Notes that something was heard of it.
  void hear(std::int64_t now) { heard_ = now; }

  /// Takes a packet: its number, from 1, and data.
  Progress take(std::span<const unsigned char> packet);

 private:
  bool is_expected(std::size_t number, std::span<const unsigned char> bytes) const;

  std::uint32_t id_;
  std::uint32_t group_number_;
  bool is_broadcast_;
  std::int64_t heard_;
  std::size_t packets_;
  std::size_t seen_count_ = 0;
  std::bitset<256> seen_;
  std::vector<unsigned char> data_;
};

}  // namespace zelk::logs

#endif
