/// \file
/// Actions of the statements that attach texts to objects: comments and value descriptions.

#ifndef ZELK_READER_TEXT_ACTIONS_HPP
#define ZELK_READER_TEXT_ACTIONS_HPP

#include "reader/read_context.hpp"

namespace zelk {

/// A later comment replaces an earlier one; value descriptions add to those that are there.
class TextActions {
 public:
  explicit TextActions(ReadContext& context) : context_(context) {}

  void comment(TokenText text);
  void node_comment(TokenText name, TokenText text);
  void message_comment(std::uint32_t id, TokenText text);
  void signal_comment(std::uint32_t id, TokenText signal, TokenText text);
  void variable_comment(TokenText variable, TokenText text);
  void type_comment(TokenText type, TokenText text);

  // The descriptions are in the context.
  void signal_descriptions(std::uint32_t id, TokenText signal);
  void variable_descriptions(TokenText variable);

 private:
  void set_comment(char*& field, TokenText text);
  void add_descriptions(val*& list);

  ReadContext& context_;
};

}  // namespace zelk

#endif
