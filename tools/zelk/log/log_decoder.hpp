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

#include "log/candump_log.hpp"
#include "log/frame_catalog.hpp"
#include "term/line_buffer.hpp"

namespace zelk::tool {

/// Counts of a log, or of a part of it.
struct LogCounts {
  std::uint64_t lines = 0;
  std::uint64_t frames = 0;     ///< of all kinds
  std::uint64_t decoded = 0;    ///< also those that the filter leaves out
  std::uint64_t unknown = 0;    ///< of identifiers that no database has
  std::uint64_t too_short = 0;  ///< decoded ones with fewer bytes than the message has
  std::uint64_t remote = 0;
  std::uint64_t errors = 0;
  std::uint64_t malformed = 0;  ///< lines

  LogCounts& operator+=(const LogCounts& other);
};

/// The number of frames with each unknown identifier.
using UnknownIds = std::unordered_map<std::uint32_t, std::uint64_t>;

/// A malformed line.
struct MalformedLine {
  std::uint64_t number;  ///< in its block, from 0
  std::string text;      ///< its beginning
};

/// The result of decoding one block.
struct DecodedBlock {
  LineBuffer text;
  LogCounts counts;
  std::vector<MalformedLine> malformed;  ///< the first ones

  void clear();
};

/// Decodes blocks of whole lines; one for each thread.
class LogDecoder {
 public:
  /// Malformed lines of a block that are kept.
  static constexpr std::size_t kMostMalformed = 10;

  /// @param catalog  must outlive the object
  explicit LogDecoder(const FrameCatalog& catalog);

  /// @param result  receives the result, in place of what it held
  void decode(std::string_view block, DecodedBlock& result);

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
    std::string text;  ///< as the output has it
    std::unordered_map<std::uint32_t, KnownId> ids;
  };

  void decode_line(std::string_view line, DecodedBlock& result);
  void decode_frame(DecodedBlock& result);
  Channel& channel_of(std::string_view name);
  KnownId& look_up(Channel& channel, std::string_view interface_name, std::uint32_t id);

  const FrameCatalog& catalog_;
  std::map<std::string, Channel, std::less<>> channels_;
  std::pair<const std::string, Channel>* last_channel_ = nullptr;
  LogFrame frame_;
  std::vector<std::int64_t> raw_;
  std::vector<std::uint64_t> present_;
};

}  // namespace zelk::tool

#endif
