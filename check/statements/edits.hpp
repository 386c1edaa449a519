/// \file
/// Changes of a text, made in one pass.

#ifndef ZELK_CHECK_STATEMENTS_EDITS_HPP
#define ZELK_CHECK_STATEMENTS_EDITS_HPP

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelk::check {

/// A part of a changed text: a stretch of the original, or text that is added.
struct Part {
  std::uint32_t begin;
  std::uint32_t end;
  std::string added{};  ///< when not empty, the part is this text; `begin` is its place then
};

/// A stretch of the original, and what stands there in the changed text.
struct Splice {
  std::uint32_t begin;
  std::uint32_t end;
  std::uint32_t new_begin;
  std::uint32_t new_end;
};

/// A text and where it came from.
class Composition {
 public:
  const std::string& text() const { return text_; }
  std::string take_text() { return std::move(text_); }

  /// The place in the original of a place in the text; of added text that of the change that added
  /// it.
  std::uint32_t origin(std::size_t offset) const;

  /// Where the text, whose parts are in the order of the original, differs from it; in order.
  ///
  /// @param size  of the original
  std::vector<Splice> splices(std::uint32_t size) const;

 private:
  friend class Edits;
  struct Run {
    std::size_t begin;     ///< in the text
    std::uint32_t origin;  ///< of the first character
    bool is_added;         ///< all of it has the one origin
  };
  void copy(std::string_view original, std::uint32_t begin, std::uint32_t end);
  void add(std::string_view text, std::uint32_t origin);

  std::string text_;
  std::vector<Run> runs_;  ///< in the order of the text
};

/// Replacements, insertions and removals by their places in the original, in any order. Of changes
/// that overlap, the one that begins first is made, and of those the first given.
class Edits {
 public:
  /// Of two at one place, the text of the first given comes first.
  void insert_before(std::uint32_t offset, std::string text) { add(offset, offset, 1, text); }
  /// The text goes where the character in front of `offset` goes, when parts of the original move.
  void insert_behind(std::uint32_t offset, std::string text) { add(offset, offset, 0, text); }
  void replace(std::uint32_t begin, std::uint32_t end, std::string text) {
    add(begin, end, 1, text);
  }
  void erase(std::uint32_t begin, std::uint32_t end) { replace(begin, end, {}); }
  /// As `replace`, for a whole: what was inserted behind its last character goes with it.
  void drop(std::uint32_t begin, std::uint32_t end, std::string text) {
    replace(begin, end, std::move(text));
    edits_.back().is_drop = true;
  }
  bool empty() const { return edits_.empty(); }

  /// @param parts  make up the changed text, in this order; stretches of the original, which do not
  /// overlap, with the changes in them
  Composition apply(std::string_view original, std::span<const Part> parts);
  /// The whole original with all changes.
  Composition apply(std::string_view original);

 private:
  struct Edit {
    std::uint64_t place;  ///< twice the offset, and one more for what belongs to what follows
    std::uint32_t end;
    std::string text;
    bool is_drop = false;
    std::uint32_t begin() const { return static_cast<std::uint32_t>(place / 2); }
  };
  void add(std::uint32_t begin, std::uint32_t end, std::uint32_t side, std::string& text) {
    edits_.push_back({std::uint64_t{begin} * 2 + side, end, std::move(text)});
  }
  void copy_part(std::string_view original, const Part& part, Composition& to) const;

  std::vector<Edit> edits_;
};

}  // namespace zelk::check

#endif
