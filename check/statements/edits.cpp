#include "check/statements/edits.hpp"

#include <algorithm>
#include <utility>

namespace zelk::check {

void Composition::copy(std::string_view original, std::uint32_t begin, std::uint32_t end) {
  if (begin == end) return;
  const bool goes_on = !runs_.empty() && !runs_.back().is_added &&
                       runs_.back().origin + (text_.size() - runs_.back().begin) == begin;
  if (!goes_on) runs_.push_back({text_.size(), begin, false});
  text_.append(original.substr(begin, end - begin));
}

void Composition::add(std::string_view text, std::uint32_t origin) {
  if (text.empty()) return;
  runs_.push_back({text_.size(), origin, true});
  text_.append(text);
}

std::uint32_t Composition::origin(std::size_t offset) const {
  const auto next = std::ranges::upper_bound(runs_, offset, {}, &Run::begin);
  if (next == runs_.begin()) return 0;
  const Run& run = *std::prev(next);
  return run.is_added ? run.origin : run.origin + static_cast<std::uint32_t>(offset - run.begin);
}

std::vector<Splice> Composition::splices(std::uint32_t size) const {
  std::vector<Splice> result;
  Splice open{0, 0, 0, 0};  // goes on up to the next stretch of the original
  const auto close = [&](std::uint32_t origin, std::size_t begin) {
    open.end = origin;
    open.new_end = static_cast<std::uint32_t>(begin);
    if (open.begin != open.end || open.new_begin != open.new_end) result.push_back(open);
  };
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    const Run& run = runs_[i];
    if (run.is_added) continue;
    close(run.origin, run.begin);
    const std::size_t end = i + 1 < runs_.size() ? runs_[i + 1].begin : text_.size();
    open.begin = run.origin + static_cast<std::uint32_t>(end - run.begin);
    open.new_begin = static_cast<std::uint32_t>(end);
  }
  close(size, text_.size());
  return result;
}

Composition Edits::apply(std::string_view original, std::span<const Part> parts) {
  std::ranges::stable_sort(edits_, {}, &Edit::place);
  Composition result;
  result.text_.reserve(original.size() + original.size() / 64);
  for (const Part& part : parts) {
    if (part.added.empty()) {
      copy_part(original, part, result);
    } else {
      result.add(part.added, part.begin);
    }
  }
  return result;
}

Composition Edits::apply(std::string_view original) {
  const Part whole{0, static_cast<std::uint32_t>(original.size())};
  return apply(original, {&whole, 1});
}

void Edits::copy_part(std::string_view original, const Part& part, Composition& to) const {
  // What is inserted behind the character in front of the part belongs to another one.
  const bool is_first = part.begin == 0;
  auto edit = std::ranges::lower_bound(edits_, std::uint64_t{part.begin} * 2 + (is_first ? 0 : 1),
                                       {}, &Edit::place);
  std::uint32_t at = part.begin;
  bool is_dropped = false;  // what stands in front of `at`
  for (; edit != edits_.end() && edit->place <= std::uint64_t{part.end} * 2; ++edit) {
    const bool is_behind_dropped = is_dropped && edit->place == std::uint64_t{at} * 2;
    if (edit->begin() < at || is_behind_dropped) continue;
    is_dropped = edit->is_drop;
    to.copy(original, at, edit->begin());
    to.add(edit->text, edit->begin());
    at = std::max(at, edit->end);
  }
  const bool is_last = part.end == original.size();
  for (; is_last && edit != edits_.end(); ++edit) to.add(edit->text, edit->begin());
  if (at < part.end) to.copy(original, at, part.end);
}

}  // namespace zelk::check
