/// \file
/// How much of the bus the cyclic messages of a database take.

#ifndef ZELK_TOOL_REPORT_BUS_LOAD_HPP
#define ZELK_TOOL_REPORT_BUS_LOAD_HPP

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "base/encoded_database.hpp"
#include "check/lint/known_attributes.hpp"
#include "report/element_ids.hpp"
#include "report/frame_length.hpp"

namespace zelk::tool {

/// Bit rates as the user gives them, in bit/s; none: what the database says.
struct BitRates {
  std::optional<double> nominal = {};
  std::optional<double> data = {};
};

/// A bit rate, and where it comes from.
struct BitRate {
  double bits_per_second;
  std::string source;  ///< "given", "attribute Baudrate", "bit timing", "assumed"
};

/// Parts of the bus's time: 0.25 is a quarter.
struct Load {
  double best = 0;   ///< without stuff bits
  double worst = 0;  ///< with as many as there can be
};

struct MessageLoad {
  const msgblk* message;
  double cycle_ms;
  FrameLength length;  ///< of all frames of the message together
  Load load;
};

struct SenderLoad {
  const symblk* node;  ///< null: none
  std::size_t message_count = 0;
  Load load = {};
};

struct BusLoad {
  BitRate bit_rate;
  BitRate data_bit_rate;
  bool has_fd = false;                ///< a cyclic message is of CAN FD
  std::vector<MessageLoad> messages;  ///< with a cycle time, the largest loads first
  std::vector<SenderLoad> senders;    ///< likewise
  Load sum;
  std::size_t without_cycle = 0;   ///< number of messages
  std::size_t without_length = 0;  ///< cyclic ones of more bytes than a frame can have
};

/// The attribute of messages with the cycle time in ms, own or default: GenMsgCycleTime, or
/// CycleTime where that is not defined.
check::KnownAttribute cycle_time(const ZelkDatabase& database);

/// The nominal bit rate is that of the attribute Baudrate, in bit/s, or of the bit timing, in
/// kbit/s, or else 500 kbit/s; that of data the attribute BaudrateCANFD, or else 2 Mbit/s.
/// Attributes below 5000 mean kbit/s: no CAN is that slow. Messages are of CAN FD when VFrameFormat
/// says so, or they have 9 to 64 bytes; J1939 sends what is longer than 8 bytes in packets.
BusLoad bus_load(const ZelkDatabase& database, const BitRates& given);

/// For bus_load.mustache.
nlohmann::json bus_load_data(const BusLoad& load, Encoding encoding, const ElementIds& ids);

}  // namespace zelk::tool

#endif
