/// \file
/// The statements of a document by what they are about.

#ifndef ZELK_CHECK_PATCH_SUBJECTS_HPP
#define ZELK_CHECK_PATCH_SUBJECTS_HPP

#include <compare>
#include <cstdint>
#include <span>
#include <vector>

#include "check/patch/cast.hpp"

namespace zelk::check {

class Subjects {
 public:
  struct Entry {
    std::uint64_t subject;
    std::uint32_t statement;
  };

  /// @param cast  whose objects have their final numbers
  explicit Subjects(const Cast& cast);

  /// By statement, as `subject_of` has it; 0 for none.
  const std::vector<std::uint64_t>& all() const { return subjects_; }

  /// The statements about a subject, in their order.
  std::span<const Entry> about(std::uint64_t subject) const;

 private:
  std::vector<std::uint64_t> subjects_;
  std::vector<Entry> entries_;
};

}  // namespace zelk::check

#endif
