/// \file
/// What a structure of the Arrow C data interface has in common with all others: children, and
/// perhaps a dictionary, that may be moved out before it is released.

#ifndef ZELK_LOGS_COLUMNS_EXPORTED_HPP
#define ZELK_LOGS_COLUMNS_EXPORTED_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zelk::logs {

/// Owns what an `ArrowArray` or `ArrowSchema` points to.
///
/// @tparam Structure  one of these two
/// @tparam Content    what else it points to
template <typename Structure, typename Content>
struct Exported {
  Exported() = default;
  Exported(const Exported&) = delete;
  Exported& operator=(const Exported&) = delete;
  ~Exported() {
    for (Structure& child : children) release_if_here(child);
    release_if_here(dictionary);
  }

  /// Adds children that are not exported yet; they stay where they are in memory.
  void add_children(std::size_t count) {
    children.resize(count);
    for (Structure& child : children) child_pointers.push_back(&child);
  }

  /// Gives the owner to a structure, whose other members the caller has set.
  static void give(std::unique_ptr<Exported> owner, Structure& to) {
    to.n_children = static_cast<std::int64_t>(owner->children.size());
    to.children = owner->children.empty() ? nullptr : owner->child_pointers.data();
    to.dictionary = owner->dictionary.release ? &owner->dictionary : nullptr;
    to.release = release;
    to.private_data = owner.release();
  }

  Content content;
  std::vector<Structure> children;
  std::vector<Structure*> child_pointers;
  Structure dictionary{};

 private:
  /// Whoever moves a structure out sets its `release` to null.
  static void release_if_here(Structure& structure) {
    if (structure.release) structure.release(&structure);
  }
  static void release(Structure* structure) {
    delete static_cast<Exported*>(structure->private_data);
    structure->release = nullptr;
  }
};

}  // namespace zelk::logs

#endif
