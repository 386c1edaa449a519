/// \file
/// Blocks of a log turned into lines of output.

#ifndef ZELK_TOOL_LOG_LOG_DECODER_HPP
#define ZELK_TOOL_LOG_LOG_DECODER_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "log/frame_catalog.hpp"
#include "log/time_window.hpp"
#include "term/line_buffer.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::tool {

/// Counts of a log, or of a part of it.
struct LogCounts : ZelkLogCounts {
  std::uint64_t outside = 0;    ///< of the times that are wanted
  std::uint64_t decoded = 0;    ///< also those that the filter leaves out
  std::uint64_t unknown = 0;    ///< of identifiers that no database has
  std::uint64_t too_short = 0;  ///< decoded ones with fewer bytes than the message has
  std::uint64_t remote = 0;
  std::uint64_t errors = 0;
  std::uint64_t packets = 0;  ///< of the transport protocol, that no database has

  LogCounts& operator+=(const LogCounts& other);
};

/// The number of frames with each unknown identifier.
using UnknownIds = std::unordered_map<std::uint32_t, std::uint64_t>;

/// The result of decoding one block.
struct DecodedBlock {
  LineBuffer text;
  LogCounts counts;

  void clear();
};

/// Decodes blocks of frames; one for each thread.
class LogDecoder {
 public:
  /// @param catalog  must outlive the object, as all others
  /// @param log_name  for errors
  /// @param is_assembled  packets of the transport protocol have been put together, and are not
  /// unknown without a message of their own
  LogDecoder(const FrameCatalog& catalog, const TimeWindow& window, const std::string& log_name,
             bool is_assembled);

  /// @param result  receives the result, in place of what it held
  /// @throws RequestError when a frame has no time and needs one
  void decode(const ZelkLogBlock& block, DecodedBlock& result);

  /// Adds the unknown identifiers of all blocks so far.
  void add_unknown_to(UnknownIds& ids) const;

 private:
  /// An identifier that frames had, and its message.
  struct KnownId {
    const PreparedMessage* message;  ///< null for none
    std::uint64_t count;
  };
  /// An interface that frames came from.
  struct Channel {
    std::string name;
    std::string text;  ///< as the output has it
    std::unordered_map<std::uint32_t, KnownId> ids;
  };

  void decode_frame(const ZelkFrameBlock& frames, std::size_t index, DecodedBlock& result);
  Channel& channel_named(const std::string& name);
  KnownId& look_up(Channel& channel, std::uint32_t id);
  bool is_packet(std::uint32_t id) const;

  const FrameCatalog& catalog_;
  const TimeWindow& window_;
  const std::string& log_name_;
  bool is_assembled_;
  std::map<std::string, Channel> channels_;
  std::vector<Channel*> block_channels_;  // those of the present block
  std::string time_;                      // of a frame, where the log does not spell it so
  std::vector<std::int64_t> raw_;
  std::vector<std::uint64_t> present_;
};

}  // namespace zelk::tool

#endif
