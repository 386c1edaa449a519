#include "check/patch/hunks.hpp"

#include <algorithm>
#include <span>

namespace zelk::check {

namespace {

constexpr int kContext = 3;

/// Whole lines of the old text, and what stands there in the new one.
struct Lines {
  Span before;
  Span after;
};

std::vector<std::string_view> lines_of(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(line);
  }
  return lines;
}

class DiffWriter {
 public:
  DiffWriter(const Source& original, const Patched& patched)
      : original_(original), patched_(patched) {}

  std::vector<DiffLine> run() {
    const std::vector<Lines> changes = changed_lines();
    for (std::size_t i = 0; i < changes.size();) {
      std::size_t end = i + 1;
      while (end < changes.size() &&
             context_begin(changes[end].before.begin) <= context_end(changes[end - 1].before.end))
        ++end;
      hunk({changes.data() + i, end - i});
      i = end;
    }
    return std::move(lines_);
  }

 private:
  bool begins_line(std::uint32_t offset) const { return original_.line_begin(offset) == offset; }

  Lines lines_around(const Splice& splice) const {
    const std::string_view added =
        std::string_view(patched_.text).substr(splice.new_begin, splice.new_end - splice.new_begin);
    const bool is_whole = begins_line(splice.begin) && begins_line(splice.end) &&
                          (added.empty() || added.ends_with('\n'));
    if (is_whole) return {{splice.begin, splice.end}, {splice.new_begin, splice.new_end}};
    const std::uint32_t begin = original_.line_begin(splice.begin);
    const std::uint32_t end = original_.next_line(splice.end);
    return {{begin, end},
            {splice.new_begin - (splice.begin - begin), splice.new_end + (end - splice.end)}};
  }

  /// Changes of the same lines are one.
  std::vector<Lines> changed_lines() const {
    std::vector<Lines> changes;
    for (const Splice& splice : patched_.splices) {
      const Lines lines = lines_around(splice);
      if (!changes.empty() && lines.before.begin < changes.back().before.end) {
        changes.back().before.end = std::max(changes.back().before.end, lines.before.end);
        changes.back().after.end = std::max(changes.back().after.end, lines.after.end);
      } else {
        changes.push_back(lines);
      }
    }
    return changes;
  }

  std::uint32_t context_begin(std::uint32_t offset) const {
    for (int i = 0; i < kContext && offset > 0; ++i) offset = original_.line_begin(offset - 1);
    return offset;
  }

  std::uint32_t context_end(std::uint32_t offset) const {
    for (int i = 0; i < kContext && offset < original_.size(); ++i)
      offset = original_.next_line(offset);
    return offset;
  }

  void put(char mark, std::string_view text) {
    for (const std::string_view line : lines_of(text)) {
      lines_.push_back({mark, std::string(line)});
      old_count_ += mark != '+' ? 1 : 0;
      new_count_ += mark != '-' ? 1 : 0;
    }
    if (!text.empty() && text.back() != '\n')
      lines_.push_back({'\\', " No newline at end of file"});
  }

  void hunk(std::span<const Lines> changes) {
    std::uint32_t done = context_begin(changes.front().before.begin);
    const std::uint32_t old_line = original_.position(done).line;
    const auto new_line = static_cast<std::uint32_t>(old_line + shift_);
    const std::size_t head = lines_.size();
    lines_.push_back({'@', ""});
    old_count_ = new_count_ = 0;
    for (const auto& [before, after] : changes) {
      put(' ', original_.text(done, before.begin));
      put('-', original_.text(before.begin, before.end));
      put('+', std::string_view(patched_.text).substr(after.begin, after.end - after.begin));
      done = before.end;
    }
    put(' ', original_.text(done, context_end(done)));
    shift_ += new_count_ - old_count_;
    lines_[head].text = "@ -" + std::to_string(old_line) + "," + std::to_string(old_count_) + " +" +
                        std::to_string(new_line) + "," + std::to_string(new_count_) + " @@";
  }

  const Source& original_;
  const Patched& patched_;
  std::vector<DiffLine> lines_;
  std::int64_t shift_ = 0;  ///< lines that the new text has more, up to here
  std::int64_t old_count_ = 0;
  std::int64_t new_count_ = 0;
};

}  // namespace

std::vector<DiffLine> diff_lines(const Source& original, const Patched& patched) {
  return DiffWriter(original, patched).run();
}

}  // namespace zelk::check
