#include "reader/model_index.hpp"

#include "base/list.hpp"
#include "model/symbols.hpp"

namespace zelk {
namespace {

constexpr int kShortList = 24;  ///< records that are walked over

template <typename Map, typename Key>
typename Map::mapped_type find(const Map& map, const Key& key) {
  const auto found = map.find(key);
  return found == map.end() ? nullptr : found->second;
}

/// Adds a record by its name; one without a name is never looked up.
template <typename Map, typename Record>
void add_by_name(Map& map, Record* record) {
  if (record->name) map.try_emplace(record->name, record);
}

/// The first record of a list that `matches`. When there is none among the first records, `is_long`
/// says whether there are more.
template <typename Record, typename Matches>
Record* find_early(Record* list, bool& is_long, Matches matches) {
  int steps = 0;
  for (Record& record : each(list)) {
    if (matches(record)) return &record;
    is_long = ++steps == kShortList;
    if (is_long) return nullptr;
  }
  return nullptr;
}

template <typename Index, typename Record>
void add_all(Index& index, Record* list) {
  for (Record& record : each(list)) index.add(&record);
}

}  // namespace

ModelIndex::ModelIndex(const ModelHeads& model) {
  add_all(*this, model.nodes);
  add_all(*this, model.messages);
  add_all(*this, model.env_vars);
  add_all(*this, model.categories);
  add_all(*this, model.sig_types);
  add_all(*this, model.val_tables);
}

void ModelIndex::add(symblk* node) { add_by_name(nodes_, node); }
void ModelIndex::add(msgblk* message) {
  has_doubled_ids_ |= !messages_.try_emplace(message->id, message).second;
}
void ModelIndex::add(env_var_blk* variable) { add_by_name(variables_, variable); }
void ModelIndex::add(cat* category) { categories_.try_emplace(category->number, category); }
void ModelIndex::add(sigtype* type) { types_.try_emplace(inline_key(type->name), type); }
void ModelIndex::add(valtable* table) { tables_.try_emplace(inline_key(table->name), table); }

symblk* ModelIndex::node(std::string_view name) const { return find(nodes_, name); }

msgblk* ModelIndex::message(std::uint32_t id) {
  if (last_message_ && last_message_->id == id) return last_message_;
  msgblk* const next = last_message_ ? last_message_->next : nullptr;
  const bool is_next = next && next->id == id && !has_doubled_ids_;
  last_message_ = is_next ? next : find(messages_, id);
  return last_message_;
}

env_var_blk* ModelIndex::variable(std::string_view name) const { return find(variables_, name); }
cat* ModelIndex::category(std::int32_t number) const { return find(categories_, number); }
sigtype* ModelIndex::type(std::string_view name) const { return find(types_, inline_key(name)); }
valtable* ModelIndex::table(std::string_view name) const { return find(tables_, inline_key(name)); }

sigblk* ModelIndex::signal(const msgblk& message, std::string_view name) {
  bool is_long = false;
  sigblk* found = find_early(message.signals, is_long, [name](const sigblk& signal) {
    return signal.name && signal.name == name;
  });
  if (!is_long) return found;
  const auto [index, is_new] = long_signal_lists_.try_emplace(&message);
  for (sigblk& signal : each(is_new ? message.signals : nullptr))
    add_by_name(index->second, &signal);
  return find(index->second, name);
}

rxblk* ModelIndex::link(rxblk* links, const symblk* node) {
  bool is_long = false;
  rxblk* found =
      find_early(links, is_long, [node](const rxblk& link) { return link.node == node; });
  if (!is_long) return found;
  const auto [index, is_new] = long_link_lists_.try_emplace(links);
  for (rxblk& link : each(is_new ? links : nullptr)) index->second.try_emplace(link.node, &link);
  return find(index->second, node);
}

}  // namespace zelk
