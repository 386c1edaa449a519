/// \file
/// Finds what the statements of a document introduce.

#ifndef ZELK_CHECK_STATEMENTS_NAMES_HPP
#define ZELK_CHECK_STATEMENTS_NAMES_HPP

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/hash_table.hpp"
#include "base/seeded_hash.hpp"
#include "check/statements/document.hpp"

namespace zelk::check {

/// The value of a whole number's token, read as the reader does; none for other tokens and for
/// values beyond 32 bits.
std::optional<std::uint32_t> whole_value(const Document& document, const Token& token);

/// The value of the first token with this role.
std::optional<std::uint32_t> whole_value(const Document& document, const Statement& statement,
                                         Role role);

/// The same with an optional sign, which is a token of its own with this role.
std::optional<std::int64_t> signed_value(const Document& document, const Statement& statement,
                                         Role role);

/// A text as the reader keeps it: between its quotes, cut at a NUL, `\"` as a double quote, no
/// carriage return in front of a line feed. Other tokens whole.
std::string text_value(const Document& document, const Token& token);

/// Any number with an optional sign.
std::optional<double> real_value(const Document& document, const Statement& statement, Role role);

/// What is introduced, by name or number. All lookups give the index of the first readable
/// statement that introduces it, which is the one that a reader finds, or `Statement::kNone`. One
/// thread at a time, until a node was looked up; then any number of them.
class Names {
 public:
  /// @param document  must outlive the object, and keep its statements
  explicit Names(const Document& document);

  /// @param id  all 32 bits of the identifier
  std::uint32_t message(std::uint32_t id) const;
  /// @param message  index of the message's statement
  std::uint32_t signal(std::uint32_t message, std::string_view name) const;
  std::uint32_t variable(std::string_view name) const;
  /// Names from here on are compared on their first 32 characters, as the reader keeps them.
  std::uint32_t table(std::string_view name) const;
  std::uint32_t type(std::string_view name) const;
  std::uint32_t category(std::int64_t number) const;
  /// A definition for objects of this kind, or else the first one of that name; definitions of
  /// relations are found for relations only.
  ///
  /// @param object  kMessage, kSignal, kNodes, kVariable, kNone for the network; kNodeSignal,
  /// kNodeMessage, kNodeVariable
  std::uint32_t attribute(std::string_view name, Word object) const;

  /// The token that introduces a node: the one in the list of nodes, or else the first transmitter,
  /// receiver or access node of that name, of which the reader makes a node. `Statement::kNone`
  /// when there is none, and for the name that stands for no node.
  std::uint32_t node(std::string_view name) const;

 private:
  using Table = HashTable<std::uint64_t, std::uint32_t, Statement::kNone>;
  using NameTable = std::unordered_map<std::string_view, std::uint32_t, SeededHash>;

  void enter(std::uint32_t index);
  void enter_definition(std::uint32_t index);
  void enter_nodes(const Statement& statement) const;
  const NameTable& nodes() const;

  const Document& document_;
  SeededHash hash_;
  Table messages_;
  Table signals_;  ///< by message and name
  NameTable variables_;
  NameTable tables_;
  NameTable types_;
  std::unordered_map<std::int64_t, std::uint32_t, SeededHash> categories_;
  /// By kind of object, then for ordinary ones and relations together, by name.
  std::map<Word, NameTable> definitions_;
  mutable std::optional<NameTable> nodes_;  ///< tokens; made at the first question
};

}  // namespace zelk::check

#endif
