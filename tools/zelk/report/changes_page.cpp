#include "report/changes_page.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "check/diff/differences.hpp"
#include "check/picture/frame_bits.hpp"
#include "diff/diff_text.hpp"
#include "page/page.hpp"
#include "report/element_ids.hpp"
#include "report/layout_data.hpp"
#include "report/page_frame.hpp"
#include "report/texts.hpp"
#include "table/cell.hpp"
#include "table/objects.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

using check::Difference;
using check::Presence;
using nlohmann::json;

namespace {

constexpr const char* kPresences[] = {"removed", "added", "changed"};

const char* word_of(Presence presence) { return kPresences[static_cast<std::size_t>(presence)]; }

/// The beginning of a text, whole characters, and what is left out.
std::string cut(const std::string& text) {
  constexpr std::size_t kMostBytes = 4000;
  if (text.size() <= kMostBytes) return text;
  std::size_t end = kMostBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + fmt::format("\u2026 ({} more bytes)", text.size() - end);
}

/// A value on one side of a change; empty for none.
std::string side_text(const check::ChangeSide& side) {
  if (side.attribute) return cut(shown_value(*side.attribute, side.encoding));
  if (const std::string* const text = side.cell.text()) return cut(text->empty() ? "\"\"" : *text);
  return cut(shown(side.cell));
}

// A page with more than these would be too large for browsers.
constexpr std::size_t kMostDetailed = 1000;  // messages with their layouts and changes
constexpr std::size_t kMostListed = 10'000;  // messages in the list, and rows of a table

/// "12 more are not shown."; empty for none.
std::string note_of_rest(std::size_t count, std::size_t shown) {
  return count > shown ? fmt::format("{} more are not shown.", count - shown) : "";
}

/// Rows of a table, which shows the first ones.
struct ChangeRows {
  json shown = json::array();
  std::size_t count = 0;

  void add(json row) {
    if (++count <= kMostListed) shown.push_back(std::move(row));
  }
};

/// A message of which something differs; one of the two is null when it was added or removed.
struct ChangedMessage {
  const msgblk* before;
  const msgblk* after;
  Presence presence = Presence::kChanged;
  bool has_other_layout = false;
  ChangeRows rows = {};
};

std::span<const ChangedMessage> first_of(const std::vector<ChangedMessage>& messages,
                                         std::size_t most) {
  return std::span(messages).first(std::min(messages.size(), most));
}

/// Gathers the differences and writes the page.
class ChangesPage {
 public:
  ChangesPage(const NamedDatabase& before, const NamedDatabase& after)
      : before_(before),
        after_(after),
        before_ids_(before.database),
        after_ids_(after.database),
        part_(report_texts::changes_part_mustache, {{"layout", report_texts::layout_mustache}}) {
    check::for_each_difference(before.database, after.database,
                               [this](const Difference& difference) { add(difference); });
  }

  std::string page() const {
    PageFrame frame{.title = before_.name + " \u2192 " + after_.name, .main = {}};
    frame.contents.push_back({{"element", "summary"}, {"heading", "Summary"}, {"count", nullptr}});
    std::string sections;
    if (!messages_.empty()) {
      add_contents(frame, "messages", "Messages", messages_.size());
      sections += message_sections();
    }
    for (const auto& [kind, rows] : rows_) {
      const std::string element = "kind" + std::to_string(frame.contents.size());
      std::string heading(kind ? kind->plural : "network");
      heading.front() = static_cast<char>(heading.front() - 'a' + 'A');
      add_contents(frame, element, heading, rows.count);
      sections += part_.fill(part(element, heading, rows));
    }
    frame.main = render(report_texts::changes_mustache, {{"before", before_.name},
                                                         {"after", after_.name},
                                                         {"is_same", counts_.empty()},
                                                         {"counts", counts()},
                                                         {"layout_parts", layout_parts()},
                                                         {"sections", sections}});
    return framed_page(frame);
  }

 private:
  static void add_contents(PageFrame& frame, const std::string& element, const std::string& heading,
                           std::size_t count) {
    frame.contents.push_back({{"element", element}, {"heading", heading}, {"count", count}});
  }

  void add(const Difference& difference) {
    ++counts_[difference.kind][static_cast<std::size_t>(difference.presence)];
    const Object& object = difference.object;
    if (const msgblk* const message = object.as<msgblk>()) {
      add_message(difference, *message);
    } else if (object.owner) {
      add_part(difference);
    } else {
      add_rows(rows_[difference.kind], difference);
    }
  }

  void add_message(const Difference& difference, const msgblk& message) {
    const bool is_added = difference.presence == Presence::kAdded;
    const bool is_changed = difference.presence == Presence::kChanged;
    const msgblk* const after = is_added ? &message : difference.after.as<msgblk>();
    ChangedMessage& changed = changed_message(is_added ? nullptr : &message, after);
    changed.presence = difference.presence;
    changed.has_other_layout = !is_changed;
    if (!is_changed) return add_signals(changed);
    for (const check::Change& change : difference.changes)
      if (change.name == "dlc") changed.has_other_layout = true;
    add_rows(changed.rows, difference);
  }

  /// Where the signals of a message lie that was added or removed.
  void add_signals(ChangedMessage& changed) {
    const bool is_added = changed.presence == Presence::kAdded;
    const msgblk& message = is_added ? *changed.after : *changed.before;
    const Encoding encoding = (is_added ? after_ : before_).database.encoding;
    for (const sigblk& signal : each(message.signals)) {
      const std::string place = check::place_text(signal);
      changed.rows.add({{"presence", word_of(changed.presence)},
                        {"kind", "signal"},
                        {"object", cut(escaped(to_utf8(view(signal.name), encoding)))},
                        {"field", "place"},
                        {"old", is_added ? "" : place},
                        {"new", is_added ? place : ""}});
    }
  }

  /// A signal or group of a message that both have.
  void add_part(const Difference& difference) {
    const msgblk* const owner = difference.object.owner;
    const msgblk* const other = difference.other_owner;
    const bool is_added = difference.presence == Presence::kAdded;
    ChangedMessage& changed = changed_message(is_added ? other : owner, is_added ? owner : other);
    add_rows(changed.rows, difference);
    const sigblk* const signal = difference.object.as<sigblk>();
    if (!signal) return;
    changed.has_other_layout = true;
    marked_.insert(signal);
    if (const sigblk* const new_one = difference.after.as<sigblk>()) marked_.insert(new_one);
  }

  ChangedMessage& changed_message(const msgblk* before, const msgblk* after) {
    const auto [entry, is_new] = index_.try_emplace(before ? before : after, messages_.size());
    if (is_new) messages_.push_back({before, after});
    return messages_[entry->second];
  }

  /// A row for each change; one for an object that was added or removed.
  static void add_rows(ChangeRows& rows, const Difference& difference) {
    json row = {{"presence", word_of(difference.presence)},
                {"kind", difference.kind ? difference.kind->singular : "network"},
                {"object", difference.kind ? cut(escaped(difference.object.name_text())) : ""},
                {"field", ""},
                {"old", ""},
                {"new", ""}};
    if (difference.presence != Presence::kChanged) return rows.add(std::move(row));
    for (const check::Change& change : difference.changes) {
      row["field"] = field_text(change);
      row["old"] = side_text(change.before);
      row["new"] = side_text(change.after);
      rows.add(row);
    }
  }

  /// How many objects of each kind differ, and how.
  json counts() const {
    json counts = json::array();
    for (const auto& [kind, numbers] : counts_) {
      const auto number = [&numbers = numbers](Presence presence) {
        return numbers[static_cast<std::size_t>(presence)];
      };
      counts.push_back({{"kind", kind ? kind->plural : "network"},
                        {"added", number(Presence::kAdded)},
                        {"removed", number(Presence::kRemoved)},
                        {"changed", number(Presence::kChanged)}});
    }
    return counts;
  }

  /// For changes_part.mustache.
  json part(const std::string& element, const std::string& heading, const ChangeRows& rows) const {
    return {{"element", element},
            {"heading", heading},
            {"level", 2},
            {"presence_word", ""},
            {"id", ""},
            {"rows", rows.shown},
            {"has_rows", rows.count > 0},
            {"rest", note_of_rest(rows.count, kMostListed)},
            {"sides", json::array()}};
  }

  std::string message_sections() const {
    std::string sections = render(report_texts::changes_messages_mustache, list_of_messages());
    for (const ChangedMessage& changed : first_of(messages_, kMostDetailed)) {
      json data = part(element_of(changed), name_of(changed), changed.rows);
      data["level"] = 3;
      data["presence_word"] = word_of(changed.presence);
      data["id"] = id_of(changed);
      if (changed.has_other_layout) data["sides"] = sides(changed);
      sections += part_.fill(data);
    }
    return sections;
  }

  json list_of_messages() const {
    json list = json::array();
    for (const ChangedMessage& changed : first_of(messages_, kMostListed)) {
      list.push_back({{"element", list.size() < kMostDetailed ? element_of(changed) : ""},
                      {"name", name_of(changed)},
                      {"id", id_of(changed)},
                      {"presence", word_of(changed.presence)}});
    }
    return {{"messages", std::move(list)},
            {"rest", note_of_rest(messages_.size(), kMostListed)},
            {"detail_rest", messages_.size() > kMostDetailed
                                ? fmt::format("The first {} are shown in detail.", kMostDetailed)
                                : ""}};
  }

  /// The same colour for signals of one name.
  json sides(const ChangedMessage& changed) const {
    json sides = json::array();
    std::unordered_map<std::string_view, std::size_t, SeededHash> colors;
    for (const msgblk* message : {changed.before, changed.after}) {
      for (const sigblk& signal : each(message ? message->signals : nullptr))
        colors.try_emplace(view(signal.name), colors.size());
    }
    const auto add = [&](const char* word, const msgblk* message, const NamedDatabase& database,
                         const ElementIds& ids) {
      if (!message) return;
      const LayoutOptions options{
          .element = word + ("-" + ids.of(message)),
          .is_marked = [this](const sigblk& signal) { return marked_.contains(&signal); },
          .color_of = [&](const sigblk& signal) { return colors.at(view(signal.name)); }};
      sides.push_back({{"side", word},
                       {"name", name_in(*message, database)},
                       {"layout", layout_data(*message, database.database.encoding, options)}});
    };
    add("before", changed.before, before_, before_ids_);
    add("after", changed.after, after_, after_ids_);
    return sides;
  }

  static std::string name_in(const msgblk& message, const NamedDatabase& database) {
    return to_utf8(view(message.name), database.database.encoding);
  }

  std::string name_of(const ChangedMessage& changed) const {
    return changed.after ? name_in(*changed.after, after_) : name_in(*changed.before, before_);
  }

  static std::string id_of(const ChangedMessage& changed) {
    return padded_id((changed.after ? changed.after : changed.before)->id);
  }

  std::string element_of(const ChangedMessage& changed) const {
    return changed.after ? after_ids_.of(changed.after)
                         : "removed-" + before_ids_.of(changed.before);
  }

  /// In the order of `object_kinds`, behind the network.
  struct ByPlace {
    bool operator()(const ObjectKind* a, const ObjectKind* b) const { return std::less<>()(a, b); }
  };

  const NamedDatabase& before_;
  const NamedDatabase& after_;
  ElementIds before_ids_;
  ElementIds after_ids_;
  PageTemplate part_;
  // Kinds are in the order of `object_kinds`, behind the network, which is null.
  std::map<const ObjectKind*, std::array<std::size_t, 3>> counts_;
  std::map<const ObjectKind*, ChangeRows> rows_;  // of objects beside messages and their parts
  std::vector<ChangedMessage> messages_;
  std::unordered_map<const msgblk*, std::size_t> index_;
  std::unordered_set<const sigblk*> marked_;
};

}  // namespace

std::string changes_page(const NamedDatabase& before, const NamedDatabase& after) {
  return ChangesPage(before, after).page();
}

}  // namespace zelk::tool
