#include "database/index.hpp"

#include <algorithm>

#include "base/list.hpp"
#include "capi/j1939_message.hpp"

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

template <typename Visit>
void DatabaseIndex::visit_candidates(const CandidateTable& table, const Keys& keys, Visit visit) {
  for (auto key = keys.begin(); key != keys.end(); ++key) {
    const bool is_repeated = std::find(keys.begin(), key, *key) != key;
    const Candidates* const candidates = is_repeated ? nullptr : table.table.find(*key);
    if (!candidates) continue;
    for (msgblk* message : *candidates) {
      if (visit(*message)) return;
    }
  }
}

template <typename Visit>
void DatabaseIndex::visit_addresses(std::uint32_t id, Visit visit) const {
  msgblk* const same = message(id);
  if (same && visit(*same)) return;
  visit_candidates(by_addresses_, j1939::address_keys(j1939::frame_of_id(id)), visit);
}

template <typename Visit>
void DatabaseIndex::visit_numbers(std::uint32_t id, Visit visit) const {
  const j1939::FrameId frame = j1939::frame_of_id(id);
  if (j1939::is_proprietary(frame)) {
    visit_candidates(by_group_and_source_, j1939::proprietary_keys(frame), visit);
  } else if (msgblk* const stored = message(j1939::stored_id(frame.group))) {
    visit(*stored);
  }
}

msgblk* DatabaseIndex::j1939_message(std::uint32_t id, std::uint32_t flags) const {
  return j1939::find_message(*this, id, ZelkDatabase::J1939Flags(flags, has_group_numbers_));
}

}  // namespace zelk
