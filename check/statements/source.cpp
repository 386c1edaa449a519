#include "check/statements/source.hpp"

#include <algorithm>
#include <utility>

#include "base/encoding.hpp"

namespace zelk::check {

namespace {

constexpr std::uint32_t kMarkBytes = 4096;

/// Bytes of well-formed UTF-8 that begin characters: all of them, or those of two units in UTF-16.
std::uint32_t count_leads(std::string_view text, unsigned from) {
  const auto leads = [from](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= from && (byte & 0xC0) != 0x80;
  };
  return static_cast<std::uint32_t>(std::ranges::count_if(text, leads));
}

}  // namespace

Source::Source(std::vector<Source> files, std::span<const Stretch> stretches)
    : path_(files.front().path_) {
  std::size_t size = 0;
  for (const Stretch& stretch : stretches) size += stretch.text.size();
  text_.reserve(size);
  pieces_.push_back({0, 0, 0});
  for (const auto& [file, begin, text] : stretches) {
    if (text.empty()) continue;
    if (text_.empty()) pieces_.clear();
    pieces_.push_back({this->size(), file, begin});
    text_ += text;
  }
  files_ = std::move(files);
}

Source::OwnPlace Source::own_place(std::uint32_t offset) const {
  if (files_.empty()) return {*this, offset};
  const auto next = std::ranges::upper_bound(pieces_, offset, {}, &Piece::begin);
  const Piece& piece = *(next - 1);
  const Source& file = files_[piece.file];
  const std::uint32_t distance = std::min(offset - piece.begin, file.size() - piece.own_begin);
  return {file, piece.own_begin + distance};
}

const std::vector<std::uint32_t>& Source::starts() const {
  if (!starts_.empty()) return starts_;
  const char line_end = line_break();
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

std::uint32_t Source::begin_of_line(std::uint32_t lines_before) const {
  return lines_before < starts().size() ? starts_[lines_before] : size();
}

void Source::extend(Front& front, std::uint32_t end) const {
  const std::string_view further = text(front.end, end);
  front.end = end;
  if (front.is_utf8) front.is_utf8 = is_utf8(further);
  if (!front.is_utf8) return;
  front.characters += count_leads(further, 0);
  front.long_characters += count_leads(further, 0xF0);
}

const std::vector<Source::Front>& Source::marks_of(std::uint32_t line) const {
  const auto [entry, is_new] = marks_.try_emplace(line);
  const std::uint32_t begin = starts_[line];
  const std::uint32_t end = line + 1 < starts_.size() ? starts_[line + 1] : size();
  Front front{line, begin, begin};
  for (std::uint32_t at = begin; is_new && end - at >= kMarkBytes;) {
    at += kMarkBytes;
    std::uint32_t whole = at;  // not within a character
    while (at - whole < 3 && whole < size() && (text_[whole] & 0xC0) == 0x80) --whole;
    extend(front, whole);
    entry->second.push_back(front);
  }
  return entry->second;
}

Source::Front Source::front_of(std::uint32_t own) const {
  const auto line = static_cast<std::uint32_t>(index_of(own));
  const std::uint32_t begin = starts_[line];
  Front front{line, begin, begin};
  const std::uint32_t marks = (own - begin) / kMarkBytes;
  if (marks != 0) front = marks_of(line)[marks - 1];
  extend(front, own);
  return front;
}

Position Source::position(std::uint32_t offset) const {
  const auto [file, own] = own_place(offset);
  const Front front = file.front_of(own);
  return {front.line + 1, front.columns() + 1};
}

std::uint32_t Source::utf16_column(std::uint32_t offset) const {
  const auto [file, own] = own_place(offset);
  const Front front = file.front_of(own);
  return front.columns() + (front.is_utf8 ? front.long_characters : 0) + 1;
}

std::uint32_t Source::offset_in_line(std::uint32_t offset) const {
  const auto [file, own] = own_place(offset);
  const auto size = static_cast<std::uint32_t>(line_at(offset).size());
  return std::min(own - file.line_begin(own), size);
}

std::string_view Source::line_at(std::uint32_t offset) const {
  const auto [file, own] = own_place(offset);
  std::string_view line = file.text(file.line_begin(own), file.next_line(own));
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

std::string_view Source::line_end() const {
  const std::size_t at = text_.find('\n');
  return at != std::string::npos && at != 0 && text_[at - 1] == '\r' ? "\r\n" : "\n";
}

}  // namespace zelk::check
