/// \file
/// The objects of the documents of a patch: which is which, whatever their names.

#ifndef ZELK_CHECK_PATCH_CAST_HPP
#define ZELK_CHECK_PATCH_CAST_HPP

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.hpp"
#include "check/patch/sequences.hpp"
#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

/// Objects of a document that statements introduce and others refer to.
enum class CastKind : std::uint8_t { kMessage, kSignal, kVariable, kTable, kType, kNode };
inline constexpr std::size_t kCastKinds = 6;

/// A document, with a number for each object: the same in all documents of a patch.
class Cast {
 public:
  static constexpr std::uint32_t kNone = Statement::kNone;

  /// Numbers the objects in their order.
  ///
  /// @param document  must outlive the object, and keep its statements
  explicit Cast(const Document& document);

  /// Gives the objects the numbers of an earlier state of the document; those that it does not
  /// have get numbers of their own.
  void follow(const Cast& before);

  /// Gives the objects the numbers of another text of the same database, whose messages, signals,
  /// variables, tables and types are in the same order.
  ///
  /// @return false when they are not as many
  bool match(const Cast& other);

  const Document& document() const { return document_; }

  /// Numbers of objects of the kind are below this.
  std::uint32_t count(CastKind kind) const {
    return static_cast<std::uint32_t>(list(kind).found.size());
  }

  /// What a token introduces or refers to; `kNone` when that is no object, or not known.
  ///
  /// @param statement  index of the token's statement
  std::uint32_t object(std::uint32_t statement, const Token& token) const;

  /// The token that introduces an object: its name, or of a message the identifier; null for an
  /// object that the document does not have.
  const Token* token(CastKind kind, std::uint32_t object) const;
  /// Index of the statement that introduces an object other than a node; `kNone` if there is none.
  std::uint32_t statement(CastKind kind, std::uint32_t object) const;

  /// What the token names, by its role; `has` is false for none.
  struct Kind {
    bool has;
    CastKind kind;
  };
  static Kind kind_of(Role role);

 private:
  using Numbers = std::vector<std::uint32_t>;
  /// Objects of one kind.
  struct List {
    Numbers places = {};   ///< statements, of nodes tokens, in their order
    Numbers objects = {};  ///< number of each
    Numbers found = {};    ///< index in `places` by number; made from `objects`
  };

  List& list(CastKind kind) { return lists_[static_cast<std::size_t>(kind)]; }
  const List& list(CastKind kind) const { return lists_[static_cast<std::size_t>(kind)]; }
  void gather();
  void enter(std::uint32_t index);
  void number();
  std::uint64_t name_key(CastKind kind, std::uint32_t place) const;
  std::vector<std::uint64_t> name_keys(CastKind kind) const;
  std::vector<std::uint64_t> message_keys(bool with_name) const;
  std::string_view full_name(std::string_view node) const;
  Partners partners_of_messages(const Cast& before) const;
  Partners partners_of_signals(const Cast& before, const Partners& messages) const;
  void take(CastKind kind, const Cast& before, const Partners& partners);
  std::uint32_t object_at(std::uint32_t statement) const;

  const Document& document_;
  Names names_;
  SeededHash hash_;
  List lists_[kCastKinds];
  Numbers objects_;  ///< by statement
  /// Long names of nodes by those that stand in their place.
  std::unordered_map<std::string_view, std::string_view, SeededHash> long_names_;
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> nodes_;  ///< objects by full name
};

}  // namespace zelk::check

#endif
