#include "check/patch/splices.hpp"

#include <algorithm>

namespace zelk::check {

namespace {

bool is_blank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == text.npos; }

}  // namespace

Splices::Splices(const Document& document)
    : document_(document), source_(document.source), line_end_(document.source.line_end()) {}

void Splices::replace(std::uint32_t begin, std::uint32_t end, std::string text) {
  if (source_.text(begin, end) == text) return;
  changes_.push_back({begin, end, std::move(text), false});
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
    changes_.push_back({line, rest.end, "", true});
  } else if (rest.is_empty || place.first == 0) {
    const std::uint32_t from = place.first == 0 ? begin : document_.tokens[place.first - 1].end;
    changes_.push_back({is_blank(source_.text(from, begin)) ? from : begin, end, "", false});
  } else {
    changes_.push_back({begin, rest.end, "", false});
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
  if (anchor == Statement::kNone) {
    changes_.push_back({0, 0, text + end, false});
    return;
  }
  const std::uint32_t behind = document_.end_of(document_.statements[anchor]);
  const Rest rest = rest_of_line(behind);
  if (!rest.is_empty) {
    changes_.push_back({behind, behind, " " + text, false});
    return;
  }
  const bool is_open = rest.end == source_.size() && source_.text().back() != '\n';
  const bool has_gap = is_block && (rest.end == source_.size() || is_blank_line(rest.end));
  changes_.push_back(
      {rest.end, rest.end, (is_open ? end : "") + (has_gap ? end : "") + text + end, false});
}

void Splices::sort() {
  std::ranges::stable_sort(changes_, [](const Change& a, const Change& b) {
    if (a.begin != b.begin) return a.begin < b.begin;
    const bool a_inserts = a.begin == a.end;
    const bool b_inserts = b.begin == b.end;
    return a_inserts != b_inserts ? a_inserts : a.end > b.end;
  });
}

bool Splices::is_changed_at(std::uint32_t offset) const {
  const auto found = std::ranges::lower_bound(changes_, offset, {}, &Change::begin);
  return found != changes_.end() && found->begin == offset;
}

/// Where whole lines between two empty ones go, one of these goes as well.
void Splices::close_gaps() {
  for (std::size_t i = 0; i < changes_.size();) {
    std::size_t last = i;
    const auto goes_on = [&](std::size_t next) {
      return next < changes_.size() && changes_[next].is_line &&
             changes_[next].begin == changes_[last].end;
    };
    if (!changes_[i].is_line) {
      ++i;
      continue;
    }
    while (goes_on(last + 1)) ++last;
    const std::uint32_t begin = changes_[i].begin;
    const std::uint32_t end = changes_[last].end;
    const bool has_gap_before = begin > 0 && is_blank_line(source_.line_begin(begin - 1));
    if (has_gap_before && end == source_.size()) {
      changes_[i].begin = source_.line_begin(begin - 1);
    } else if (has_gap_before && is_blank_line(end) && !is_changed_at(end)) {
      changes_[last].end = source_.next_line(end);
    }
    i = last + 1;
  }
}

Patched Splices::apply() {
  sort();
  close_gaps();
  Patched result;
  std::uint32_t done = 0;
  for (Change& change : changes_) {
    const bool cuts_more = change.text.empty() && change.end > done;
    if (change.begin < done && !cuts_more) continue;
    change.begin = std::max(change.begin, done);
    result.text += source_.text(done, change.begin);
    const auto begin = static_cast<std::uint32_t>(result.text.size());
    result.text += change.text;
    const auto end = static_cast<std::uint32_t>(result.text.size());
    if (!change.text.empty() || change.begin != change.end)
      result.splices.push_back({{change.begin, change.end}, {begin, end}});
    done = change.end;
  }
  result.text += source_.text(done, source_.size());
  return result;
}

}  // namespace zelk::check
