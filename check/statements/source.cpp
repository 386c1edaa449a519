#include "check/statements/source.hpp"

#include <algorithm>

#include "base/encoding.hpp"

namespace zelk::check {

namespace {

/// Characters of well-formed UTF-8 are counted by the bytes that begin one.
std::size_t count_characters(std::string_view text) {
  if (!is_utf8(text)) return text.size();
  const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
  return static_cast<std::size_t>(std::ranges::count_if(text, begins));
}

}  // namespace

const std::vector<std::uint32_t>& Source::starts() const {
  if (!starts_.empty()) return starts_;
  const char line_end = text_.find('\n') == std::string::npos ? '\r' : '\n';
  starts_.push_back(0);
  for (std::size_t at = text_.find(line_end); at != std::string::npos;
       at = text_.find(line_end, at + 1))
    starts_.push_back(static_cast<std::uint32_t>(at + 1));
  return starts_;
}

std::size_t Source::index_of(std::uint32_t offset) const {
  const auto next = std::ranges::upper_bound(starts(), offset);
  return static_cast<std::size_t>(next - starts_.begin()) - 1;
}

std::uint32_t Source::line_begin(std::uint32_t offset) const { return starts()[index_of(offset)]; }

std::uint32_t Source::next_line(std::uint32_t offset) const {
  const std::size_t next = index_of(offset) + 1;
  return next < starts().size() ? starts_[next] : size();
}

Position Source::position(std::uint32_t offset) const {
  const std::size_t index = index_of(offset);
  const std::size_t column = count_characters(text(starts_[index], offset)) + 1;
  return {static_cast<std::uint32_t>(index + 1), static_cast<std::uint32_t>(column)};
}

std::string_view Source::line(std::uint32_t number) const {
  if (number == 0 || number > starts().size()) return {};
  const std::uint32_t begin = starts_[number - 1];
  std::string_view line = text(begin, number < starts_.size() ? starts_[number] : size());
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

}  // namespace zelk::check
