#include "reader/text_actions.hpp"

namespace zelk {

void TextActions::set_comment(char*& field, TokenText text) {
  assign_text(field, copy_text(text.view()));
  context_.end_statement();
}

void TextActions::comment(TokenText text) { set_comment(context_.model.comment, text); }

void TextActions::node_comment(TokenText name, TokenText text) {
  if (symblk* node = context_.node(name)) {
    set_comment(node->comment, text);
  } else {
    context_.end_statement();
  }
}

void TextActions::message_comment(std::uint32_t id, TokenText text) {
  set_comment(context_.message(id).comment, text);
}

void TextActions::signal_comment(std::uint32_t id, TokenText signal, TokenText text) {
  set_comment(context_.signal(id, signal).comment, text);
}

void TextActions::variable_comment(TokenText variable, TokenText text) {
  set_comment(context_.variable(variable).comment, text);
}

void TextActions::type_comment(TokenText type, TokenText text) {
  set_comment(context_.type(type).comment, text);
}

void TextActions::signal_descriptions(std::uint32_t id, TokenText signal) {
  add_descriptions(context_.signal(id, signal).values);
}

void TextActions::variable_descriptions(TokenText variable) {
  add_descriptions(context_.variable(variable).values);
}

void TextActions::add_descriptions(val*& list) {
  context_.object_lists.append(list, Owned<val>(context_.descriptions.take()));
  context_.end_statement();
}

}  // namespace zelk
