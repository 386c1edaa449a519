/// \file
/// What a text decoder decodes: its databases, what their messages need to be printed, and the
/// search for the message of a frame. It does not change once it is made, and is shared by all
/// threads.

#ifndef ZELK_LOGS_TEXTS_TEXT_PLAN_HPP
#define ZELK_LOGS_TEXTS_TEXT_PLAN_HPP

#include <cstddef>
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
  const MessageFinder& finder() const { return finder_; }
  /// By the number that the finder gives it.
  const PreparedMessage& message(std::uint32_t number) const { return messages_[number]; }
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

/// Decodes blocks of frames into lines; one for each thread.
class BlockPrinter {
 public:
  /// @param plan  the same one each time
  void print(const TextPlan& plan, const ZelkFrameBlock& frames);

  const LineBuffer& text() const { return text_; }
  const ZelkFrameCounts& counts() const { return counts_; }

 private:
  /// An interface that frames came from.
  struct Channel {
    std::string text;  ///< as the output has it
    std::uint32_t route;
  };

  void enter_channels(const TextPlan& plan, const ZelkFrameBlock& frames);
  const PreparedMessage* find(const TextPlan& plan, const Channel& channel, std::uint32_t id);
  void print_frame(const TextPlan& plan, const ZelkFrameBlock& frames, std::size_t index);

  LineBuffer text_;
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
