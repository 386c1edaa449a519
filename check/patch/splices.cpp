#include "check/patch/splices.hpp"

#include <algorithm>
#include <utility>

namespace zelk::check {

Splices::Splices(const Document& document)
    : document_(document), source_(document.source), line_end_(document.source.line_end()) {}

void Splices::replace(std::uint32_t begin, std::uint32_t end, std::string text) {
  if (source_.text(begin, end) == text) return;
  if (begin == end) return edits_.insert_behind(begin, std::move(text));
  edits_.replace(begin, end, std::move(text));
}

std::string Splices::with_line_ends(std::string_view text) const {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, 2) == "\r\n") continue;
    if (text[i] == '\n') {
      result += line_end_;
    } else {
      result += text[i];
    }
  }
  return result;
}

Splices::Rest Splices::rest_of_line(std::uint32_t offset) const {
  const std::string_view text = source_.text();
  const std::size_t token = text.find_first_not_of(" \t\r", offset);
  if (token == text.npos) return {true, source_.size()};
  const bool is_comment = text.substr(token, 2) == "//";
  if (!is_comment && text[token] != '\n') return {false, static_cast<std::uint32_t>(token)};
  const std::size_t line_feed = text.find('\n', token);
  const std::size_t end = line_feed == text.npos ? text.size() : line_feed + 1;
  return {true, static_cast<std::uint32_t>(end)};
}

bool Splices::is_blank_line(std::uint32_t begin) const {
  return begin < source_.size() && is_blank(source_.text(begin, source_.next_line(begin)));
}

/// The beginning of the line, when nothing but blanks stands there in front of `offset`.
std::uint32_t Splices::line_begin_if_first(std::uint32_t offset) const {
  const std::uint32_t begin = source_.line_begin(offset);
  return is_blank(source_.text(begin, offset)) ? begin : Statement::kNone;
}

void Splices::remove(std::uint32_t statement) {
  const Statement& place = document_.statements[statement];
  const std::uint32_t begin = document_.begin_of(place);
  const std::uint32_t end = document_.end_of(place);
  const std::uint32_t line = line_begin_if_first(begin);
  const Rest rest = rest_of_line(end);
  if (line != Statement::kNone && rest.is_empty) {
    lines_.push_back({line, rest.end});
  } else if (rest.is_empty || place.first == 0) {
    const std::uint32_t from = place.first == 0 ? begin : document_.tokens[place.first - 1].end;
    removals_.push_back({is_blank(source_.text(from, begin)) ? from : begin, end});
  } else {
    removals_.push_back({begin, rest.end});
  }
}

std::string Splices::indentation_at(std::uint32_t statement) const {
  const std::uint32_t begin = document_.begin_of(document_.statements[statement]);
  const std::uint32_t line = line_begin_if_first(begin);
  return line == Statement::kNone ? "" : std::string(source_.text(line, begin));
}

void Splices::insert(std::uint32_t anchor, std::string_view statement, bool is_block) {
  const std::string text(statement);
  const std::string end(line_end_);
  if (anchor == Statement::kNone) return insertions_.push_back({0, text + end});
  const std::uint32_t behind = document_.end_of(document_.statements[anchor]);
  const Rest rest = rest_of_line(behind);
  if (!rest.is_empty) return insertions_.push_back({behind, " " + text});
  const bool has_gap = is_block && (rest.end == source_.size() || is_blank_line(rest.end));
  insertions_.push_back({rest.end, (has_gap ? end : "") + text + end});
}

/// Removed lines behind an empty one, with only empty ones between them, go as one.
void Splices::close_gaps() {
  std::ranges::sort(lines_, {}, &Span::begin);
  for (std::size_t i = 0; i < lines_.size();) {
    Span all = lines_[i++];
    const bool has_gap = all.begin > 0 && is_blank_line(source_.line_begin(all.begin - 1));
    const auto goes_on_at = [&](std::uint32_t begin) {
      return begin <= all.end || (has_gap && begin == behind_gap(all.end));
    };
    for (; i < lines_.size() && goes_on_at(lines_[i].begin); ++i)
      all.end = std::max(all.end, lines_[i].end);
    if (has_gap && all.end == source_.size()) {
      all.begin = source_.line_begin(all.begin - 1);
    } else if (has_gap && behind_gap(all.end) != all.end) {
      all.end = source_.next_line(all.end);
    }
    removals_.push_back(all);
  }
}

/// Behind the empty lines from `begin` on, if nothing is inserted there.
std::uint32_t Splices::behind_gap(std::uint32_t begin) const {
  const bool has_insertion = std::ranges::binary_search(insertions_, begin, {}, &Insertion::place);
  while (!has_insertion && is_blank_line(begin)) begin = source_.next_line(begin);
  return begin;
}

void Splices::join_removals() {
  std::ranges::sort(removals_, {}, &Span::begin);
  std::vector<Span> joined;
  for (const Span& removal : removals_) {
    if (joined.empty() || removal.begin > joined.back().end) {
      joined.push_back(removal);
    } else {
      joined.back().end = std::max(joined.back().end, removal.end);
    }
  }
  removals_ = std::move(joined);
  for (Span& removal : removals_) take_blanks(removal);
}

/// What ends within a line leaves no blanks at its end, and not the line alone.
void Splices::take_blanks(Span& removal) const {
  const std::string_view text = source_.text();
  const bool ends_line = removal.end > 0 && text[removal.end - 1] != '\n' &&
                         (removal.end == text.size() || text[removal.end] == '\n' ||
                          text.substr(removal.end, 2) == "\r\n");
  if (!ends_line) return;
  while (removal.begin > 0 && (text[removal.begin - 1] == ' ' || text[removal.begin - 1] == '\t'))
    --removal.begin;
  if (source_.line_begin(removal.begin) == removal.begin)
    removal.end = source_.next_line(removal.end);
}

/// Out of what is removed around it.
void Splices::place(Insertion& insertion) {
  const auto next = std::ranges::upper_bound(removals_, insertion.place, {}, &Span::end);
  if (next != removals_.end() && next->begin < insertion.place) insertion.place = next->end;
  const bool touches = insertion.place < source_.size() && insertion.text.back() != '\n' &&
                       !is_blank(source_.text().substr(insertion.place, 1));
  if (touches) insertion.text += ' ';
  edits_.insert_behind(insertion.place, std::move(insertion.text));
}

/// Whether what stays of the text ends within a line.
bool Splices::is_end_open() const {
  const bool is_end_removed = !removals_.empty() && removals_.back().end == source_.size();
  const std::uint32_t end = is_end_removed ? removals_.back().begin : source_.size();
  return source_.line_begin(end) != end;
}

/// A text without a line end at its end stays one.
void Splices::keep_open_end(Patched& patched) const {
  const bool is_kept = source_.size() == 0 || source_.text().back() == '\n' ||
                       !patched.text.ends_with(line_end_) || patched.splices.empty();
  if (is_kept) return;
  Splice& last = patched.splices.back();
  const auto size = static_cast<std::uint32_t>(line_end_.size());
  patched.text.resize(patched.text.size() - size);
  if (last.new_end - last.new_begin < size) {  // the line end in front of what was removed
    last.begin -= size;
    last.new_begin -= size;
  }
  last.new_end -= size;
}

Patched Splices::apply() {
  std::ranges::stable_sort(insertions_, {}, &Insertion::place);
  close_gaps();
  join_removals();
  for (const auto& [begin, end] : removals_) edits_.erase(begin, end);
  const auto at_end = std::ranges::lower_bound(insertions_, source_.size(), {}, &Insertion::place);
  if (at_end != insertions_.end() && is_end_open()) at_end->text.insert(0, line_end_);
  for (Insertion& insertion : insertions_) place(insertion);
  Composition composition = edits_.apply(source_.text());
  std::vector<Splice> splices = composition.splices(source_.size());
  Patched patched{composition.take_text(), std::move(splices)};
  keep_open_end(patched);
  return patched;
}

}  // namespace zelk::check
