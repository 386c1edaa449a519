#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "logs/forms/form.hpp"
#include "logs/forms/lines.hpp"
#include "logs/forms/trc_columns.hpp"
#include "logs/forms/trc_header.hpp"
#include "logs/forms/trc_line.hpp"
#include "logs/frames/filler.hpp"

namespace zelk::logs {

namespace {

constexpr char kCommentMark = ';';

/// Parses one block of lines.
class BlockParser {
 public:
  BlockParser(const TrcHeader& header, ZelkLogBlock& block, std::uint64_t first_line)
      : header_(header), block_(block), filler_(block.frames), line_(first_line) {}

  void parse(std::string_view text) {
    const std::uint64_t first = line_;
    for_each_line(text, [&](std::string_view line) {
      if (!line.starts_with(kCommentMark)) parse_line(line);
      ++line_;
    });
    block_.counts.lines = line_ - first;
    block_.counts.frames = block_.frames.Size();
  }

 private:
  void parse_line(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    TrcFrame frame{.data = filler_.room(kLongestTrcData)};
    const LineKind kind = parse_trc_line(line, header_, frame);
    if (kind == LineKind::kMalformed) note_malformed(block_, line_, line);
    if (kind != LineKind::kFrame) return;
    filler_.put(frame.has_time ? header_.start + frame.time : kZelkNoTime, frame.id, frame.flags,
                channel_of(frame.bus), frame.length);
  }

  std::uint16_t channel_of(unsigned bus) {
    std::optional<std::uint16_t>& channel = channels_[bus];
    if (!channel) channel = block_.frames.ChannelIndex(bus ? std::to_string(bus) : "");
    return *channel;
  }

  const TrcHeader& header_;
  ZelkLogBlock& block_;
  ZelkFrameFiller filler_;
  std::uint64_t line_;
  std::array<std::optional<std::uint16_t>, 100> channels_{};  // by number of the bus
};

/// Traces may stand one behind the other in a file: each stretch that is given out lies behind one
/// head, and takes it along.
class Trc : public Form {
 public:
  explicit Trc(LogInput input) : name_(input.name), lines_(std::move(input)) {}

  bool next(Chunk& chunk) override {
    if (at_ == text_.bytes.size()) {
      if (!lines_.next(text_)) return false;
      at_ = 0;
      line_ = text_.first_line;
    }
    const std::size_t begin = at_;
    const std::size_t first = read_head(begin);
    const std::size_t end = next_directive(first);
    chunk.first_line = line_;
    chunk.context = header_of(std::string_view(text_.bytes).substr(first, end - first));
    if (begin == 0 && end == text_.bytes.size()) {
      chunk.bytes.swap(text_.bytes);
      text_.bytes.clear();
      at_ = 0;
      return true;
    }
    chunk.bytes.assign(text_.bytes, begin, end - begin);
    line_ += count_line_feeds(chunk.bytes);
    at_ = end;
    return true;
  }

  void parse(Chunk& chunk, ZelkLogBlock& block) const override {
    const auto& header = *static_cast<const TrcHeader*>(chunk.context.get());
    BlockParser(header, block, chunk.first_line).parse(chunk.bytes);
  }

 private:
  /// Reads lines with ";" from a place on.
  ///
  /// @return behind them
  std::size_t read_head(std::size_t at) {
    const std::string_view text = text_.bytes;
    TrcHeader header = *header_;
    bool is_changed = false;
    for (std::uint64_t number = line_; at < text.size() && text[at] == kCommentMark; ++number) {
      const std::size_t end = std::min(text.find('\n', at), text.size());
      const std::string_view line = text.substr(at, end - at);
      if (is_trc_directive(line)) {
        is_changed = true;
        const std::string fault = read_trc_directive(line.substr(0, kLongestLine), header);
        if (!fault.empty()) throw ZelkLogError(name_ + ':' + std::to_string(number) + ": " + fault);
      }
      at = std::min(end + 1, text.size());
    }
    if (is_changed) header_ = std::make_shared<const TrcHeader>(std::move(header));
    return at;
  }

  /// The head of lines; where it does not tell their columns, they do.
  std::shared_ptr<const TrcHeader> header_of(std::string_view lines) {
    if (header_->has_columns) return header_;
    const TrcColumns told = columns_of_trc(lines);
    if (told.letters.empty()) return header_;
    std::shared_ptr<const TrcHeader> header = std::make_shared<const TrcHeader>(
        TrcHeader{header_->start, std::string(told.letters), told.is_only});
    if (told.is_only) header_ = header;
    return header;
  }

  /// Where the first line of a head begins from a place on; the end of the text for none.
  std::size_t next_directive(std::size_t at) const {
    const std::string& text = text_.bytes;
    for (; (at = text.find(";$", at)) != std::string::npos; ++at)
      if (at == 0 || text[at - 1] == '\n') return at;
    return text.size();
  }

  std::string name_;
  Lines lines_;
  Chunk text_{};            // lines that have been read
  std::size_t at_ = 0;      // of them, the next one to be given out,
  std::uint64_t line_ = 1;  // and its number
  std::shared_ptr<const TrcHeader> header_ = std::make_shared<const TrcHeader>();
};

}  // namespace

std::unique_ptr<Form> open_trc(LogInput input) { return std::make_unique<Trc>(std::move(input)); }

}  // namespace zelk::logs
