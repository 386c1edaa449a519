#include "database/index.hpp"

#include <algorithm>
#include <array>
#include <span>

#include "base/list.hpp"
#include "codec/j1939.hpp"

namespace zelk {

template <typename Record>
HashTable<std::uint64_t, Record*> DatabaseIndex::by_name(Record* list) const {
  HashTable<std::uint64_t, Record*> table(each(list).size());
  for (Record& record : each(list)) {
    const char* const name = record.name;
    if (!name) continue;
    table.enter(key_of<Record>(name), &record,
                [name](const Record* other) { return is_named(*other, name); });
  }
  return table;
}

void DatabaseIndex::CandidateTable::enter(std::uint32_t key, msgblk* message) {
  Candidates* candidates = table.find(key);
  if (!candidates) candidates = table.enter(key, &all.emplace_back());
  const std::uint32_t priority = j1939::priority_of(*message);
  const auto is_equal = [priority](const msgblk* other) {
    return j1939::priority_of(*other) == priority;
  };
  if (std::count_if(candidates->begin(), candidates->end(), is_equal) < 2) {
    candidates->push_back(message);
  } else {
    *std::find_if(candidates->rbegin(), candidates->rend(), is_equal) = message;
  }
}

DatabaseIndex::DatabaseIndex(const ZelkDatabase& database)
    : nodes_(by_name(database.nodes)),
      messages_(by_name(database.messages)),
      variables_(by_name(database.env_vars)),
      tables_(by_name(database.value_tables)),
      types_(by_name(database.signal_types)),
      definitions_(by_name(database.attr_defs)),
      messages_by_id_(each(database.messages).size()),
      by_addresses_(each(database.messages).size()),
      by_group_and_source_(2 * each(database.messages).size()),
      has_group_numbers_(database.HasJ1939GroupNumbers()),
      default_is_j1939_(j1939::default_is_j1939_format(database.attr_defs)) {
  for (msgblk& message : each(database.messages)) {
    messages_by_id_.enter(message.id, &message);
    by_addresses_.enter(j1939::address_key(message.id), &message);
    if ((message.id & ZELK_ID_EXTENDED) == 0) continue;
    by_group_and_source_.enter(j1939::proprietary_key(message.id), &message);
    if (!j1939::has_any_source_key(message.id)) continue;
    const j1939::Group group = j1939::group_of_number(message.id);
    by_group_and_source_.enter(j1939::any_source_key(group), &message);
  }
}

/// Tries only messages that some rule can take for this frame.
msgblk* DatabaseIndex::j1939_message(std::uint32_t id, std::uint32_t flags) const {
  if ((id & ZELK_ID_EXTENDED) == 0) return message(id);
  flags = ZelkDatabase::J1939Flags(flags, has_group_numbers_);
  const j1939::FrameId frame = j1939::frame_of_id(id);
  const bool stores_numbers = (flags & ZELK_J1939_PGN_IDS) != 0;
  if (stores_numbers && !j1939::is_proprietary(frame))
    return message(j1939::stored_id(frame.group));
  msgblk* const same = stores_numbers ? nullptr : message(id);
  if (same) return same;

  const CandidateTable& table = stores_numbers ? by_group_and_source_ : by_addresses_;
  const auto keys = stores_numbers ? j1939::proprietary_keys(frame) : j1939::address_keys(frame);
  std::array<std::span<msgblk* const>, keys.size()> lists;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const auto* const key = keys.begin() + i;
    const bool is_repeated = std::find(keys.begin(), key, *key) != key;
    const Candidates* const candidates = is_repeated ? nullptr : table.table.find(*key);
    if (candidates) lists[i] = *candidates;
  }
  return j1939::find_message(lists, id, flags, [this] { return default_is_j1939_; });
}

}  // namespace zelk
