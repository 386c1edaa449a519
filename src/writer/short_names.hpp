/// \file
/// Names as they are written: at most 32 characters, the long ones made unique.

#ifndef ZELK_WRITER_SHORT_NAMES_HPP
#define ZELK_WRITER_SHORT_NAMES_HPP

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/seeded_hash.hpp"
#include "base/text_view.hpp"
#include "model/heads.hpp"
#include "model/symbols.hpp"

namespace zelk {

/// Whether a name is too long for the format; null is not.
inline bool is_long_name(const char* name) { return !fits_inline(view(name)); }

/// Kinds of objects whose names may be longer than the format allows, in the order of
/// `kLongNameAttributes`.
enum class NamedKind : std::size_t { kSignal, kMessage, kNode, kVariable };
inline constexpr std::size_t kNamedKinds = 4;

/// The written names of the objects of one kind.
///
/// A name of 1 to 32 characters is written as it is. For others a written name is chosen when it is
/// first asked for: the first 32 characters, or a substitute for an empty name; with a number
/// instead of the last characters where that name is in use.
class ShortNames {
 public:
  /// Takes a name of 1 to 32 characters for itself. All of them come before the first
  /// `written_name`.
  void reserve(std::string_view name) { used_.insert(name); }

  /// @param record  the object, by its address
  /// @param name    its name; null reads as empty
  /// @return a text that stays as long as this and the object's name
  std::string_view written_name(const void* record, const char* name);

  /// Whether a name of more than 32 characters has been shortened.
  bool has_long_names() const { return has_long_names_; }

 private:
  std::string choose(std::string_view name);

  std::unordered_set<std::string_view, SeededHash> used_;
  std::unordered_map<const void*, std::string> chosen_;
  std::unordered_map<std::string, int, SeededHash>
      next_numbers_;  ///< by what stands in front of the number
  bool has_long_names_ = false;
};

/// The written names of one write.
class ShortNameCache {
 public:
  /// Reserves all names that fit.
  explicit ShortNameCache(const ModelView& model);

  ShortNames& operator[](NamedKind kind) { return kinds_[static_cast<std::size_t>(kind)]; }

 private:
  std::array<ShortNames, kNamedKinds> kinds_;
};

}  // namespace zelk

#endif
