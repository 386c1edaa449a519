/// \file
/// Where in the text each record stands.

#ifndef ZELK_CHECK_LINT_PLACES_HPP
#define ZELK_CHECK_LINT_PLACES_HPP

#include <cstdint>
#include <span>
#include <vector>

#include "check/records/strict_reading.hpp"
#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

/// `Statement::kNone` stands for a place that is not known.
struct PlacedSignal {
  const sigblk* record;
  std::uint32_t statement;
};

struct PlacedMessage {
  const msgblk* record;
  std::uint32_t statement;
  std::uint32_t first_signal;
  std::uint32_t end_signal;
};

struct PlacedVariable {
  const env_var_blk* record;
  std::uint32_t statement;
};

struct PlacedNode {
  const symblk* record;
  std::uint32_t token;  ///< its name: in the list of nodes, or else where it stands first
};

/// The records of a database in the order of their lists, with their places. Records bear other
/// names than their statements when these are short forms of long names.
///
/// The reader makes records in the order of the statements. It passes over some that look readable:
/// what follows a byte that ends the text, and what a statement hides whose name "NS_" announces.
/// So records and statements are walked together, and statements that do not fit are left out.
class Places {
 public:
  /// @param document  must outlive the object, as `records` must
  /// @param names     of the document
  Places(const Document& document, const Names& names, const RecordsView& records);

  std::span<const PlacedMessage> messages() const { return messages_; }
  std::span<const PlacedSignal> signals() const { return signals_; }
  std::span<const PlacedSignal> signals(const PlacedMessage& message) const {
    return signals().subspan(message.first_signal, message.end_signal - message.first_signal);
  }
  std::span<const PlacedVariable> variables() const { return variables_; }
  std::span<const PlacedNode> nodes() const { return nodes_; }
  /// Those of which the reader made nodes because they are used, although no list has them.
  std::span<const PlacedNode> unlisted_nodes() const { return nodes().subspan(listed_nodes_); }

  /// The record of a statement; null when the reader made none of it.
  const PlacedMessage* message_at(std::uint32_t statement) const;
  const PlacedSignal* signal_at(std::uint32_t statement) const;
  const PlacedVariable* variable_at(std::uint32_t statement) const;

  /// Number of statements that the reader reads: up to a byte that ends the text.
  std::uint32_t end() const { return end_; }

 private:
  void place_messages(const msgblk* first);
  void place_signals(const msgblk& message, std::uint32_t statement);
  void place_variables(const env_var_blk* first);
  void place_nodes(const symblk* first, const Names& names);

  const Document& document_;
  std::uint32_t end_ = 0;
  std::vector<PlacedMessage> messages_;
  std::vector<PlacedSignal> signals_;
  std::vector<PlacedVariable> variables_;
  std::vector<PlacedNode> nodes_;
  std::size_t listed_nodes_ = 0;
};

}  // namespace zelk::check

#endif
