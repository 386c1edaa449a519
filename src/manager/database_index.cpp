#include "manager/database_index.hpp"

#include "capi/j1939.hpp"

namespace zelk {

template <typename Record>
void DatabaseIndex::enter_names(NameMap<Record>& map, Record* list) {
  for (Record* record = list; record; record = record->next) {
    if constexpr (std::is_pointer_v<decltype(record->name)>) {
      if (!record->name) continue;
    }
    const std::string_view name = static_cast<const char*>(record->name);
    map.try_emplace(name.substr(0, key_length(record)), record);
  }
}

DatabaseIndex::DatabaseIndex(const ZelkDatabase& database)
    : has_group_numbers_(database.HasJ1939GroupNumbers()),
      default_is_j1939_(j1939::default_is_j1939_format(database.attr_defs)) {
  enter_names(nodes_, database.nodes);
  enter_names(messages_, database.messages);
  enter_names(variables_, database.env_vars);
  enter_names(tables_, database.value_tables);
  enter_names(types_, database.signal_types);
  enter_names(definitions_, database.attr_defs);
  for (msgblk* message = database.messages; message; message = message->next) {
    messages_by_id_.try_emplace(message->id, message);
    groups_of_ids_[j1939::frame_of_id(message->id).group.key].push_back(message);
    groups_of_numbers_[j1939::group_of_number(message->id).key].push_back(message);
  }
}

msgblk* DatabaseIndex::message(std::uint32_t id) const {
  const auto found = messages_by_id_.find(id);
  return found == messages_by_id_.end() ? nullptr : found->second;
}

msgblk* DatabaseIndex::j1939_message(std::uint32_t id, std::uint32_t flags) const {
  if ((id & ZELK_ID_EXTENDED) == 0) return message(id);
  flags = ZelkDatabase::J1939Flags(flags, has_group_numbers_);
  const GroupMap& groups = (flags & ZELK_J1939_PGN_IDS) != 0 ? groups_of_numbers_ : groups_of_ids_;
  const auto found = groups.find(j1939::frame_of_id(id).group.key);
  if (found == groups.end()) return nullptr;
  return j1939::find_message(found->second, id, flags, [this] { return default_is_j1939_; });
}

}  // namespace zelk
