/// \file
/// Objects that an edit gives other names or identifiers.

#ifndef ZELK_CHECK_PATCH_RENAMING_HPP
#define ZELK_CHECK_PATCH_RENAMING_HPP

#include <cstdint>
#include <string_view>
#include <vector>

#include "check/patch/cast.hpp"
#include "check/patch/splices.hpp"

namespace zelk::check {

class Renaming {
 public:
  /// What has other names in `after`. Both must outlive the object.
  Renaming(const Cast& before, const Cast& after);

  /// Whether an object gets a name that another one had.
  bool reuses_names() const { return reuses_names_; }

  /// Changes the names wherever they stand in a text of the database `before`.
  void apply(const Cast& original, Splices& splices) const;

 private:
  void note(CastKind kind, std::uint32_t object, Role role);
  void apply(const Cast& original, std::uint32_t statement, const Token& token,
             Splices& splices) const;

  const Cast& before_;
  const Cast& after_;
  std::vector<bool> renamed_[kCastKinds];  ///< by object; empty for none of the kind
  std::vector<std::string_view> old_names_;
  std::vector<std::string_view> new_names_;
  bool reuses_names_ = false;
};

}  // namespace zelk::check

#endif
