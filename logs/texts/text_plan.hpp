/// \file
/// What a text decoder decodes: its databases, what their messages need to be printed, and the
/// search for the message of a frame. It does not change once it is made, and is shared by all
/// threads.

#ifndef ZELK_LOGS_TEXTS_TEXT_PLAN_HPP
#define ZELK_LOGS_TEXTS_TEXT_PLAN_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "logs/lookup/choosing.hpp"
#include "logs/lookup/message_finder.hpp"
#include "logs/texts/prepared_message.hpp"

namespace zelk::logs {

class TextPlan {
 public:
  TextPlan(const Choosing& chosen, const ZelkTextOptions& options);
  TextPlan(const TextPlan&) = delete;
  TextPlan& operator=(const TextPlan&) = delete;

  const FrameFormat& format() const { return format_; }
  bool is_raw() const { return is_raw_; }
  const std::vector<NamedDatabase>& databases() const { return databases_; }
  const MessageFinder& finder() const { return finder_; }
  /// By the numbers that the finder gives them.
  const std::vector<PreparedMessage>& messages() const { return messages_; }
  /// The most signals that a message has.
  std::size_t most_signals() const { return most_signals_; }

 private:
  const FrameFormat& format_;
  bool is_raw_;
  std::vector<NamedDatabase> databases_;
  MessageFinder finder_;
  std::vector<PreparedMessage> messages_;
  std::size_t most_signals_ = 0;
};

/// Finds and decodes the frames of blocks, and counts them; one for each thread.
class FrameWalk {
 public:
  /// Calls `visit(frame, index)` for each frame of a message that is shown.
  ///
  /// @param plan  the same one each time
  template <typename Visit>
  void walk(const TextPlan& plan, const ZelkFrameBlock& frames, const Visit& visit) {
    begin(plan, frames);
    for (std::size_t i = 0; i < frames.Size(); ++i) {
      const PreparedMessage* const message = find(plan, frames, i);
      if (message && message->is_shown) visit(decoded(frames, i, *message), i);
    }
  }
  const ZelkFrameCounts& counts() const { return counts_; }

 private:
  /// An interface that frames came from.
  struct Channel {
    std::string text;  ///< as the output has it
    std::uint32_t route;
  };

  void begin(const TextPlan& plan, const ZelkFrameBlock& frames);
  const PreparedMessage* find(const TextPlan& plan, const ZelkFrameBlock& frames,
                              std::size_t index);
  DecodedFrame decoded(const ZelkFrameBlock& frames, std::size_t index,
                       const PreparedMessage& message);

  ZelkFrameCounts counts_;
  MessageFinder::Cache cache_;
  std::map<std::string, Channel> channels_;
  std::vector<const Channel*> block_channels_;  // those of the present block
  std::string time_;                            // of a frame, where the log does not spell it
  std::vector<std::int64_t> raw_;
  std::vector<std::uint64_t> present_;
};

}  // namespace zelk::logs

#endif
