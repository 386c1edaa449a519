#include "check/patch/subjects.hpp"

#include <algorithm>

#include "check/patch/pieces.hpp"

namespace zelk::check {

Subjects::Subjects(const Cast& cast) : subjects_(cast.document().statements.size()) {
  for (std::uint32_t i = 0; i < subjects_.size(); ++i) {
    subjects_[i] = subject_of(cast, i);
    if (subjects_[i] != 0) entries_.push_back({subjects_[i], i});
  }
  std::ranges::sort(entries_);
}

std::span<const Subjects::Entry> Subjects::about(std::uint64_t subject) const {
  const auto found = std::ranges::equal_range(entries_, subject, {}, &Entry::subject);
  return {found.begin(), found.end()};
}

}  // namespace zelk::check
