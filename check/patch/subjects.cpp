#include "check/patch/subjects.hpp"

#include <algorithm>

#include "check/patch/pieces.hpp"

namespace zelk::check {

Subjects::Subjects(const Cast& cast) : subjects_(cast.document().statements.size()) {
  for (std::uint32_t i = 0; i < subjects_.size(); ++i) {
    subjects_[i] = subject_of(cast, i);
    if (subjects_[i] != 0) entries_.push_back({subjects_[i], i});
  }
  std::ranges::stable_sort(entries_, {}, &Entry::subject);
}

std::span<const Subjects::Entry> Subjects::about(std::uint64_t subject) const {
  const auto first = std::ranges::lower_bound(entries_, subject, {}, &Entry::subject);
  const auto behind = std::ranges::upper_bound(entries_, subject, {}, &Entry::subject);
  return {first, behind};
}

}  // namespace zelk::check
