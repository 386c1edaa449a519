/// \file
/// Carries the change of a statement over to another spelling of it.

#ifndef ZELK_CHECK_PATCH_MERGE_HPP
#define ZELK_CHECK_PATCH_MERGE_HPP

#include <cstdint>
#include <string>
#include <vector>

#include "check/patch/pieces.hpp"
#include "check/patch/splices.hpp"

namespace zelk::check {

/// The documents of a patch: a text as its author wrote it, and two that the library has written,
/// of the records before and after an edit. All must outlive the object.
struct Casts {
  const Cast& original;
  const Cast& before;
  const Cast& after;
};

/// Changes statements of the original. Names of objects are not its business: objects that keep
/// their names count as equal, and so do those that get other ones.
class Merge {
 public:
  Merge(const Casts& casts, Splices& splices) : casts_(casts), splices_(splices) {}

  /// Whether two statements say the same.
  bool are_equal(std::uint32_t before, std::uint32_t after) const;

  /// Makes an original statement say what `after` says. Only what differs between `before` and
  /// `after` changes; everything that differs from `after` when `before` is `Statement::kNone`, or
  /// the original does not have the parts of `before`.
  void change(std::uint32_t original, std::uint32_t before, std::uint32_t after);

  /// A statement of the document after the edit, with the names of objects that the original has.
  std::string text_of(std::uint32_t after) const;

  /// The first name of a role in such a statement, likewise; empty when it has none.
  std::string name_in(std::uint32_t after, Role role) const;

 private:
  /// A statement of the original, and what it shall say.
  struct Pair {
    std::vector<Piece> old;
    std::vector<Piece> wanted;
  };

  bool locate(const std::vector<Piece>& before, const Pair& pair,
              std::vector<Divergence>& changes) const;
  void apply(const Pair& pair, const Divergence& change);
  void erase(const Pair& pair, const Divergence& change);
  void add(const Pair& pair, const Divergence& change);
  std::string lead(const Pair& pair, const Divergence& change) const;
  std::string wanted_text(const std::vector<Piece>& pieces, std::uint32_t begin,
                          std::uint32_t end) const;
  std::string spelled(const Piece& piece) const;
  std::string_view gap(const Document& document, const std::vector<Piece>& pieces,
                       std::uint32_t index) const;
  std::uint32_t begin_of(const Piece& piece) const;
  std::uint32_t end_of(const Piece& piece) const;
  bool ends_at(const Pair& pair, std::uint32_t index) const;

  Casts casts_;
  Splices& splices_;
};

}  // namespace zelk::check

#endif
