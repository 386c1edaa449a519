/// \file
/// Messages of J1939 that are longer than a frame.

#ifndef ZELK_LOGS_TRANSPORT_HPP
#define ZELK_LOGS_TRANSPORT_HPP

#include <cstddef>
#include <cstdint>
#include <memory>

#include "zelk/export.h"
#include "zelk/logs/frame.hpp"

/// What became of the messages that stations announced.
struct ZelkTransportCounts {
  std::uint64_t complete = 0;      ///< put together
  std::uint64_t aborted = 0;       ///< by one of the two stations
  std::uint64_t incomplete = 0;    ///< packets are missing: until the time ran out, the next
                                   ///< message was announced, or the log ended
  std::uint64_t inconsistent = 0;  ///< an announcement that contradicts itself, or packets that
                                   ///< contradict their announcement
  std::uint64_t dropped = 0;       ///< to bound the memory
  std::uint64_t stray = 0;         ///< packets that belong to no message; these are frames

  /// All messages that were announced and have ended.
  std::uint64_t Messages() const {
    return complete + aborted + incomplete + inconsistent + dropped;
  }
};

/// Puts messages of the J1939 transport protocol together (SAE J1939-21): those that a station
/// broadcasts (BAM), and those that it sends to another one (RTS/CTS), as a listener sees them.
///
///     ZelkTransport transport;
///     while (reader.Next(block)) {
///       transport.Assemble(block.frames);
///       ... // decode the block
///     }
///     transport.End();
///
/// A message is a frame of up to 1785 bytes: its identifier has the parameter group that was
/// announced, the priority and the source of the announcement, and its destination for the groups
/// that have one; time, channel and direction are those of its last packet.
///
/// Each pair of source and destination on a channel sends one message at a time. Broadcast packets
/// come in their order; those to one station may come in any order and repeatedly, as that one asks
/// for them. Where frames have times, a message is given up when nothing was heard of it for longer
/// than the protocol allows: 750 ms for broadcasts, else 1250 ms. Messages shorter than nine bytes,
/// which need no transport, are taken as well.
class ZELK_LOGS_API ZelkTransport {
 public:
  /// Longest message, in bytes.
  static constexpr std::size_t kMostData = 1785;
  /// Messages that can be under way at a time. For one more, that of which nothing was heard for
  /// longest is dropped.
  static constexpr std::size_t kMostSessions = 4096;

  /// @throws std::bad_alloc
  ZelkTransport();
  ZelkTransport(const ZelkTransport&) = delete;
  ZelkTransport& operator=(const ZelkTransport&) = delete;
  ~ZelkTransport();

  /// Takes the next block of a log, and inserts each message behind the packet that completes it.
  /// All frames of the block stay, also the packets: a database may describe them.
  ///
  /// @throws std::bad_alloc, and std::length_error for more than 4 GiB of data; the block has to be
  /// cleared then
  void Assemble(ZelkFrameBlock& frames);

  /// The end of the log: what is still under way is incomplete.
  void End();

  const ZelkTransportCounts& Counts() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
