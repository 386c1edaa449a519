#include "reader/read_context.hpp"

#include <string>
#include <utility>

#include "text/words.hpp"

namespace zelk {

ReadContext::ReadContext(const ReadTarget& target, ByteSource source)
    : model(target),
      lexer(std::move(source)),
      index(target),
      nodes(target.nodes),
      messages(target.messages),
      env_vars(target.env_vars),
      categories(target.categories),
      types(target.sig_types),
      tables(target.val_tables) {}

void ReadContext::note(std::uint32_t number, std::string_view text) const {
  zelk_note(number, lexer.line(), std::string(text).c_str());
}

void ReadContext::end_statement() {
  names.clear();
  descriptions.clear();
  lexer.forget_texts();
}

msgblk& ReadContext::message(std::uint32_t id) {
  if (msgblk* found = index.message(id)) return *found;
  fail(ZELK_ERR_UNKNOWN_SYMBOL, "msg " + std::to_string(id));
}

sigblk& ReadContext::signal(std::uint32_t message_id, TokenText name) {
  return signal(message(message_id), name);
}

sigblk& ReadContext::signal(msgblk& message, TokenText name) {
  if (sigblk* found = index.signal(message, name.view())) return *found;
  fail(ZELK_ERR_UNKNOWN_SYMBOL, name.view());
}

env_var_blk& ReadContext::variable(TokenText name) {
  if (env_var_blk* found = index.variable(name.view())) return *found;
  fail(ZELK_ERR_UNKNOWN_SYMBOL, name.view());
}

sigtype& ReadContext::type(TokenText name) {
  if (sigtype* found = index.type(name.view())) return *found;
  fail(ZELK_ERR_UNKNOWN_SYMBOL, name.view());
}

valtable& ReadContext::table(TokenText name) {
  if (valtable* found = index.table(name.view())) return *found;
  fail(ZELK_ERR_UNKNOWN_SYMBOL, name.view());
}

symblk* ReadContext::node(TokenText name) {
  if (is_no_node(name.view())) return nullptr;
  if (symblk* found = index.node(name.view())) return found;
  fail(ZELK_ERR_UNKNOWN_SYMBOL, name.view());
}

symblk* ReadContext::linked_node(std::string_view name) {
  if (is_no_node(name)) return nullptr;
  if (symblk* found = index.node(name)) return found;
  Owned<symblk> node(zelk_create_symbol());
  node->name = copy_text(name).release();
  index.add(node.get());
  nodes.append(node.get());
  return node.release();
}

void ReadContext::link_names(PendingList<rxblk>& links, rxblk* (*create)(symblk*)) {
  for (const TokenText& name : names) {
    if (symblk* node = linked_node(name.view())) links.push_back(create(node));
  }
}

}  // namespace zelk
