/// \file
/// Text logs, cut into blocks of whole lines.

#ifndef ZELK_LOGS_FORMS_LINES_HPP
#define ZELK_LOGS_FORMS_LINES_HPP

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "logs/forms/form.hpp"
#include "logs/input/byte_stream.hpp"

namespace zelk::logs {

/// In bytes, without its line feed; longer ones are malformed. A message of J1939 takes 5,400.
inline constexpr std::size_t kLongestLine = 1 << 13;

/// Reads a text as blocks of whole lines. The lines of a pipe are given out as they come.
class Lines {
 public:
  explicit Lines(LogInput input)
      : stream_(std::move(input.stream)),
        stop_(input.options.stop),
        text_(input.block_bytes, '\0') {}

  /// The next lines. Only the last line of the text may lack its line feed. Of a line that is
  /// longer than `kLongestLine`, only the beginning may be given out, which is too long as well.
  /// What has been read of a line when the log is stopped, or cannot be read further, is no line.
  ///
  /// @return false at the end
  bool next(Chunk& chunk);

 private:
  bool read_more();
  void drop_skipped();
  bool take_lines(std::string& block);
  void give(std::size_t end, std::string& block);

  std::unique_ptr<ByteStream> stream_;
  const std::atomic<bool>* stop_;
  std::uint64_t line_ = 1;  // the next one's number
  std::string text_;
  std::size_t size_ = 0;   // of what has been read of it: less than all, and no whole line
  bool skipping_ = false;  // inside a line that was too long
};

std::uint64_t count_line_feeds(std::string_view text);

/// Takes the first line off a text that is not empty; without its line feed.
inline std::string_view take_line(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

/// Calls `act(line)` for each line, without its line feed.
template <typename Act>
void for_each_line(std::string_view text, const Act& act) {
  while (!text.empty()) act(take_line(text));
}

}  // namespace zelk::logs

#endif
