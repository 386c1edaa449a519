/// \file
/// What the actions of all statements share.

#ifndef ZELK_READER_READ_CONTEXT_HPP
#define ZELK_READER_READ_CONTEXT_HPP

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/memory.hpp"
#include "model/release.hpp"
#include "reader/lexer.hpp"
#include "reader/model_index.hpp"
#include "reader/object_list_tails.hpp"
#include "reader/read.hpp"
#include "reader/token.hpp"
#include "zelk/errors.h"

namespace zelk {

/// The state of a read, but for what the statements of one subject keep to themselves.
struct ReadContext {
  ReadContext(const ReadTarget& target, ByteSource source);

  ReadTarget model;
  Lexer lexer;
  ModelIndex index;
  ListTail<symblk> nodes;
  ListTail<msgblk> messages;
  ListTail<env_var_blk> env_vars;
  ListTail<cat> categories;
  ListTail<sigtype> types;
  ListTail<valtable> tables;
  ObjectListTails object_lists;

  std::vector<TokenText> names;   ///< the list of names of the statement under way
  PendingList<val> descriptions;  ///< the value descriptions of the statement under way
  /// A message has several multiplexors: look for cycles at the end.
  bool extended_multiplexing = false;

  /// Ends the read with an error at the present line.
  [[noreturn]] void fail(std::uint32_t number, std::string_view text) const {
    lexer.fail(number, text);
  }
  /// Notes a warning at the present line.
  void note(std::uint32_t number, std::string_view text) const;

  /// The statement under way is done: its texts and lists are not needed any more.
  void end_statement();

  // What a statement is about. Each ends the read with error 20 when there is no such object.
  msgblk& message(std::uint32_t id);
  sigblk& signal(std::uint32_t message_id, TokenText name);
  sigblk& signal(msgblk& message, TokenText name);
  env_var_blk& variable(TokenText name);
  sigtype& type(TokenText name);
  valtable& table(TokenText name);
  /// Null for the placeholder, about which every statement is accepted without effect.
  symblk* node(TokenText name);

  /// The node of a name in a list of nodes, created when missing; null for the placeholder.
  symblk* linked_node(std::string_view name);
  /// Links to the nodes of `names`, in order.
  void link_names(PendingList<rxblk>& links, rxblk* (*create)(symblk*));
};

}  // namespace zelk

#endif
