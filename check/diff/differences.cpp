#include "check/diff/differences.hpp"

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/enum_items.hpp"
#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "check/diff/pairing.hpp"
#include "check/objects/attribute_words.hpp"

namespace zelk::check {

namespace {

using Messages = std::vector<const msgblk*>;

Messages messages_of(const ZelkDatabase& database) {
  Messages messages;
  for (const msgblk& message : each(database.messages)) messages.push_back(&message);
  return messages;
}

std::vector<ObjectKey> identifiers_of(const Messages& messages) {
  std::vector<ObjectKey> keys;
  for (const msgblk* message : messages) keys.push_back({message->id, {}, {}});
  return keys;
}

/// Which messages of the two databases are the same.
class MessagePairs {
 public:
  MessagePairs(const ZelkDatabase& before, const ZelkDatabase& after)
      : before_(messages_of(before)),
        after_(messages_of(after)),
        pairs_(pair_up(identifiers_of(before_), identifiers_of(after_))) {
    pair_by_name();
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
      if (pairs_[i].before) numbers_[before_[*pairs_[i].before]] = i;
      if (pairs_[i].after) numbers_[after_[*pairs_[i].after]] = i;
    }
  }

  /// The same for the two messages of a pair; each other message has one of its own.
  std::size_t number(const msgblk& message) const { return numbers_.at(&message); }

  /// Whether both databases have the message.
  bool is_common(const msgblk& message) const {
    const ObjectPair& pair = pairs_[number(message)];
    return pair.before && pair.after;
  }

  /// The same message of the other database; null when it has none, and for none.
  const msgblk* counterpart(const msgblk* message) const {
    if (!message || !is_common(*message)) return nullptr;
    const ObjectPair& pair = pairs_[number(*message)];
    const msgblk* const before = before_[*pair.before];
    return message == before ? after_[*pair.after] : before;
  }

 private:
  using Names = std::unordered_map<std::string_view, std::size_t, SeededHash>;

  static Names count_names(const Messages& messages) {
    Names counts;
    for (const msgblk* message : messages) ++counts[view(message->name)];
    return counts;
  }

  /// Joins the messages that are alone under their identifiers.
  void pair_by_name() {
    const Names old_counts = count_names(before_);
    const Names new_counts = count_names(after_);
    Names alone_after;
    for (std::size_t i = 0; i < pairs_.size(); ++i)
      if (!pairs_[i].before) alone_after[view(after_[*pairs_[i].after]->name)] = i;
    if (alone_after.empty()) return;
    for (ObjectPair& pair : pairs_) {
      if (pair.after || !pair.before) continue;
      const std::string_view name = view(before_[*pair.before]->name);
      const auto other = alone_after.find(name);
      if (other == alone_after.end() || old_counts.at(name) != 1 || new_counts.at(name) != 1)
        continue;
      pair.after = std::exchange(pairs_[other->second].after, std::nullopt);
    }
  }

  Messages before_;
  Messages after_;
  std::vector<ObjectPair> pairs_;
  std::unordered_map<const msgblk*, std::size_t> numbers_;
};

class DatabaseComparison {
 public:
  DatabaseComparison(EncodedDatabase before, EncodedDatabase after,
                     const std::function<void(const Difference&)>& visit)
      : before_(before), after_(after), visit_(visit), messages_(before.records, after.records) {}

  void network() const {
    std::vector<Change> changes = network_changes(before_, after_);
    if (changes.empty()) return;
    visit_({Presence::kChanged, nullptr, {}, std::move(changes), {}, nullptr});
  }

  void objects(const ObjectKind& kind) const {
    const Side before = side(kind, before_);
    const Side after = side(kind, after_);
    for (const ObjectPair& pair : pair_up(before.keys, after.keys)) {
      if (!pair.after) {
        alone(Presence::kRemoved, kind, before.objects[*pair.before]);
      } else if (!pair.before) {
        alone(Presence::kAdded, kind, after.objects[*pair.after]);
      } else {
        common(kind, before.objects[*pair.before], after.objects[*pair.after]);
      }
    }
  }

 private:
  /// The objects of a kind in one database, and by what they are matched.
  struct Side {
    std::vector<Object> objects;
    std::vector<ObjectKey> keys;
  };

  Side side(const ObjectKind& kind, EncodedDatabase database) const {
    Side side;
    kind.for_each(database, [&](const Object& object) {
      if (object.owner && !messages_.is_common(*object.owner)) return;
      side.objects.push_back(object);
      side.keys.push_back(key_of(object));
    });
    return side;
  }

  ObjectKey key_of(const Object& object) const {
    if (const msgblk* const message = object.as<msgblk>())
      return {messages_.number(*message), {}, {}};
    if (object.owner) return {messages_.number(*object.owner), object.name_text(), {}};
    const attr_def* const definition = object.as<attr_def>();
    return {0, object.name_text(), definition ? std::string(object_kind(*definition)) : ""};
  }

  void alone(Presence presence, const ObjectKind& kind, const Object& object) const {
    visit_({presence, &kind, object, {}, {}, messages_.counterpart(object.owner)});
  }

  void common(const ObjectKind& kind, const Object& before, const Object& after) const {
    std::vector<Change> changes = changes_between(kind, before, after);
    if (changes.empty()) return;
    visit_({Presence::kChanged, &kind, before, std::move(changes), after, after.owner});
  }

  EncodedDatabase before_;
  EncodedDatabase after_;
  const std::function<void(const Difference&)>& visit_;
  MessagePairs messages_;
};

}  // namespace

void for_each_difference(EncodedDatabase before, EncodedDatabase after,
                         const std::function<void(const Difference&)>& visit) {
  const IndexedEnumItems items;
  const DatabaseComparison comparison(before, after, visit);
  comparison.network();
  for (const ObjectKind& kind : object_kinds())
    if (kind.is_named) comparison.objects(kind);
}

}  // namespace zelk::check
