#include "calls/content.hpp"

#include <fstream>
#include <functional>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/list.hpp"
#include "database/heads.hpp"
#include "written_words.hpp"
#include "zelk/zelk.h"

using zelk::each;

namespace {

constexpr const char* kContents[] = {
    "BS_:\nBU_: N\n",
    "BS_:\nBU_: N O\nBO_ 1 M: 8 N\n SG_ S : 0|8@1+ (1,0) [0|1] \"V\" O\nCM_ BO_ 1 \"text\";\n",
    "VERSION \"1\"\nBS_:\nBU_:\nBA_DEF_ \"DBName\" STRING ;\nBA_DEF_DEF_ \"DBName\" \"a\";\n",
    "BS_:\nBU_: N\nBO_ 2 P: 8 N\n SG_ X M : 0|4@1+ (1,0) [0|0] \"\" N\n"
    " SG_ Y m1 : 8|8@0- (0.1,5) [0|0] \"\" N\nBA_DEF_ BO_ \"A\" INT 0 9;\n"
    "BA_DEF_DEF_ \"A\" 1;\nBA_ \"A\" BO_ 2 5;\nVAL_ 2 X 1 \"one\" 0 \"none\" ;\n",
    "BS_:\nBU_: Half\nBO_ 1 M: 8 N\n SG_\n",
    "",
    "BS_:\nBU_: N\nVAL_TABLE_ ANameOfMoreThanThirtyTwoCharacters 0 \"cut\" ;\n",
    "BS_:\nBU_: N\nCAT_DEF_ 1 C 0;\nSIG_GROUP_ 9 G 1 : S;\n",
};

constexpr const char* kNames[] = {"a",
                                  "b",
                                  "M",
                                  "N",
                                  "S",
                                  "A",
                                  nullptr,
                                  "BO_",
                                  "no name",
                                  "",
                                  "ANameThatIsMuchLongerThanThirtyTwoCharacters",
                                  "x",
                                  "A",
                                  "Two",
                                  "B2",
                                  "_"};

constexpr const char* kTexts[] = {"text", "a \"quoted\" \\ text", nullptr, "two\nlines", "x"};

template <typename Record>
Record* nth(Record* head, std::size_t n) {
  while (head && head->next && n-- > 0) head = head->next;
  return head;
}

const char* text_from(Choices& choices) { return kTexts[choices.below(std::size(kTexts))]; }

/// A file replaces a name that is missing or empty by another one.
const char* object_name_from(Choices& choices) {
  const char* const name = name_from(choices);
  return name && *name != '\0' ? name : "Unnamed";
}

void add_to(std::uint64_t& sum, std::uint64_t number) { sum = (sum ^ number) * 0x100000001B3; }
void add_to(std::uint64_t& sum, const char* text) {
  add_to(sum, text ? std::hash<std::string_view>()(text) : 0);
}

// The edits.

using Edit = void (*)(ZelkWriteManager&, ZelkDatabase&, const char*, Choices&);

void create_node(ZelkWriteManager& manager, ZelkDatabase&, const char* db, Choices& choices) {
  symblk* const node = manager.CreateNode(db, choices.below(3));
  if (node) manager.SetName(*node, object_name_from(choices));
}

void delete_node(ZelkWriteManager& manager, ZelkDatabase& d, const char* db, Choices& choices) {
  symblk* const node = nth(d.nodes, choices.below(3));
  if (node) manager.DeleteNode(*node, choices.flag() ? db : nullptr);
}

void create_message(ZelkWriteManager& manager, ZelkDatabase&, const char* db, Choices& choices) {
  msgblk* const message = manager.CreateMessage(db, choices.below(3));
  if (!message) return;
  manager.SetName(*message, object_name_from(choices));
  message->id = choices.below(5);
  message->dlc = 8;
}

void delete_message(ZelkWriteManager& manager, ZelkDatabase& d, const char* db, Choices& choices) {
  msgblk* const message = nth(d.messages, choices.below(3));
  if (message) manager.DeleteMessage(*message, choices.flag() ? db : nullptr);
}

void create_signal(ZelkWriteManager& manager, ZelkDatabase& d, const char*, Choices& choices) {
  msgblk* const message = nth(d.messages, choices.below(3));
  sigblk* const signal = message ? manager.CreateSignal(*message, choices.below(3)) : nullptr;
  if (!signal) return;
  manager.SetName(*signal, object_name_from(choices));
  signal->start_bit = static_cast<std::uint16_t>(choices.below(64));
  signal->length = static_cast<std::uint16_t>(choices.below(33));
}

void delete_signal(ZelkWriteManager& manager, ZelkDatabase& d, const char* db, Choices& choices) {
  msgblk* const message = nth(d.messages, choices.below(3));
  sigblk* const signal = message ? nth(message->signals, choices.below(3)) : nullptr;
  if (signal) manager.DeleteSignal(*signal, choices.flag() ? db : nullptr);
}

void set_texts(ZelkWriteManager& manager, ZelkDatabase& d, const char* db, Choices& choices) {
  const char* const text = text_from(choices);
  const unsigned kind = choices.below(4);
  if (kind == 0) manager.SetDatabaseComment(db, text);
  if (kind == 1) manager.SetUserData(db, text);
  if (kind == 2 && d.messages) manager.SetComment(*d.messages, text);
  if (kind == 3 && d.nodes) manager.SetComment(*d.nodes, text);
}

void rename(ZelkWriteManager& manager, ZelkDatabase& d, const char*, Choices& choices) {
  msgblk* const message = nth(d.messages, choices.below(3));
  if (message) manager.SetName(*message, object_name_from(choices));
}

void define_attribute(ZelkWriteManager& manager, ZelkDatabase&, const char* db, Choices& choices) {
  attr_def* const definition = manager.CreateAttrDefinition(db, choices.below(2));
  if (!definition) return;
  definition->object_type = static_cast<std::int32_t>(choices.below(4));
  definition->value_type = choices.flag() ? ZELK_ATTR_INT : ZELK_ATTR_STRING;
  if (definition->value_type == ZELK_ATTR_STRING)  // null would be written as the empty text
    definition->default_value.text = static_cast<char*>(zelk_malloc(1));
  std::string_view(object_name_from(choices)).copy(definition->name, sizeof definition->name - 1);
}

void delete_definition(ZelkWriteManager& manager, ZelkDatabase& d, const char* db,
                       Choices& choices) {
  attr_def* const definition = nth(d.attr_defs, choices.below(2));
  if (definition) manager.DeleteAttrDefinition(*definition, choices.flag() ? db : nullptr);
}

void set_attribute(ZelkWriteManager& manager, ZelkDatabase& d, const char* db, Choices& choices) {
  const attr_def* const named = nth(d.attr_defs, choices.below(3));
  if (!named) return;
  const std::string name = named->name;
  const double number = choices.below(9);
  // Several definitions may have that name: the one that counts tells what a value is.
  const auto value = [number](const attr_def* definition) {
    static std::string text = "value";
    zelk_attr_value_t result = {number};
    if (definition && definition->value_type == ZELK_ATTR_STRING) result.text = text.data();
    return result;
  };
  msgblk* const message = nth(d.messages, choices.below(2));
  symblk* const node = nth(d.nodes, choices.below(2));
  const ZelkManager& lookups = manager;
  switch (choices.below(6)) {
    case 0:
      return manager.SetAttrValue(db, name.c_str(),
                                  value(lookups.GetNetworkAttrDefinition(db, name.c_str())));
    case 1:
      if (node)
        manager.SetAttrValue(*node, name.c_str(),
                             value(lookups.GetAttrDefinition(*node, name.c_str())));
      return;
    case 2:
      return manager.ResetAttrValue(db, name.c_str());
    case 3:
      if (message) manager.ResetAttrValue(*message, name.c_str());
      return;
    default:
      if (message)
        manager.SetAttrValue(*message, name.c_str(),
                             value(lookups.GetAttrDefinition(*message, name.c_str())));
  }
}

void link(ZelkWriteManager& manager, ZelkDatabase& d, const char*, Choices& choices) {
  msgblk* const message = nth(d.messages, choices.below(2));
  sigblk* const signal = message ? nth(message->signals, choices.below(3)) : nullptr;
  const symblk* const node = nth(d.nodes, choices.below(3));
  if (!signal) return;
  if (choices.flag()) manager.SetValueDescription(*signal, choices.below(4), text_from(choices));
  if (choices.flag() && node) manager.AddReceiver(*signal, *node);
  if (choices.flag() && node) manager.RemoveReceiver(*signal, *node);
  if (choices.flag())
    zelk_add_multiplexor_value_range(signal, nth(message->signals, choices.below(3)), 1, 2);
  siggroupblk* const group = choices.flag() ? manager.CreateSignalGroup(*message, 0) : nullptr;
  if (group) std::string_view("G").copy(group->name, 1);
  if (group) manager.AddSignal(*group, *signal);
}

}  // namespace

const char* content_from(Choices& choices) {
  return kContents[choices.below(std::size(kContents))];
}

const char* name_from(Choices& choices) { return kNames[choices.below(std::size(kNames))]; }

void edit(ZelkWriteManager& manager, const char* db, Choices& choices) {
  constexpr Edit kEdits[] = {create_node,   delete_node,      create_message,    delete_message,
                             create_signal, delete_signal,    set_texts,         rename,
                             link,          define_attribute, delete_definition, set_attribute};
  ZelkDatabase* const database = manager.GetDatabase(db);
  if (database) kEdits[choices.below(std::size(kEdits))](manager, *database, db, choices);
}

std::uint64_t fingerprint(const ZelkDatabase& d) {
  std::uint64_t sum = 0xCBF29CE484222325;
  add_to(sum, d.comment);
  add_to(sum, d.user_data ? d.user_data : "");  // a copy has an empty one
  for (const symblk& node : each(d.nodes)) {
    add_to(sum, node.name);
    add_to(sum, node.comment);
    add_to(sum, each(node.attrs).size());
  }
  for (const msgblk& message : each(d.messages)) {
    add_to(sum, message.name);
    add_to(sum, message.comment);
    add_to(sum, message.id + (std::uint64_t{message.dlc} << 32));
    add_to(sum, each(message.attrs).size());
    for (const sigblk& signal : each(message.signals)) {
      add_to(sum, signal.name);
      add_to(sum, signal.start_bit * 65536U + signal.length);
      add_to(sum, each(signal.receivers).size() * 65536U + each(signal.values).size());
      add_to(sum, each(signal.mux_ranges).size());
    }
  }
  for (const attr_def& definition : each(d.attr_defs)) add_to(sum, definition.name);
  add_to(sum, each(d.attr_values).size());
  add_to(sum, each(d.value_tables).size() * 65536U + each(d.categories).size());
  return sum;
}

namespace {

constexpr std::string_view kMiscounted = " miscounted";

}  // namespace

std::string words_of(const ZelkDatabase& database) {
  return without(written_words(zelk::view_of(database)), kMiscounted);
}

bool has_lost_names(const ZelkDatabase& database) {
  return has_lost_names(database.messages, database.attr_defs);
}

// The same bytes come again and again.
bool read_words(const std::string& path, std::string& words) {
  struct Known {
    bool is_read;
    std::string words;
  };
  constexpr std::size_t kMostKnown = 4096;
  static std::unordered_map<std::string, Known> known;
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) return false;
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  auto found = known.find(bytes);
  if (found == known.end()) {
    if (known.size() == kMostKnown) known.clear();
    Lists lists;
    const bool is_read = lists.try_read(path.c_str()) == ZELK_OK;
    std::string read = without(written_words(view_of(lists)), kMiscounted);
    found = known.insert({bytes, {is_read, std::move(read)}}).first;
  }
  words = found->second.words;
  return found->second.is_read;
}
