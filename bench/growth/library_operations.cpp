#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "growth/measuring.hpp"
#include "growth/operations.hpp"
#include "support/lists.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/logs/columns.hpp"
#include "zelk/logs/texts.hpp"
#include "zelk/logs/wide.hpp"
#include "zelk/write_manager.hpp"

namespace zelk::bench {
namespace {

void expect(bool holds) {
  if (!holds) throw std::runtime_error("a call has failed");
}

/// A manager with one database open.
template <typename Manager>
struct Opened {
  explicit Opened(const std::string& path) {
    expect(manager.OpenDatabase(path.c_str(), &name, 0) == ZelkErrorOk);
  }
  const ZelkDatabase& database() { return *manager.GetConstDatabase(name); }

  Manager manager{static_cast<void*>(nullptr)};
  const char* name = nullptr;
};
using Reading = Opened<ZelkManager>;
using Writing = Opened<ZelkWriteManager>;

void read(const Input& input, const Start& start) {
  start();
  Lists lists;
  expect(lists.try_read(input.database.c_str()) == 0);
}

void write(const Input& input, const Start& start) {
  Lists lists;
  expect(lists.try_read(input.database.c_str()) == 0);
  start();
  lists.write_by(zelk_try_write, input.out.c_str());
}

/// Every object by its name or identifier; the first lookup makes the index.
void look_up(const Input& input, const Start& start) {
  Reading opened(input.database);
  ZelkManager& manager = opened.manager;
  const char* const db = opened.name;
  start();
  for (const symblk* node : manager.GetNodeIterator(db)) manager.GetNode(node->name, db);
  for (const msgblk* message : manager.GetMessageIterator(db)) {
    manager.GetMessage(message->name, db);
    manager.GetMessage(message->id, db);
    manager.GetJ1939Message(message->id, 0, db);
  }
  for (const env_var_blk* variable : manager.GetEnvvarIterator(db))
    manager.GetEnvvar(variable->name, db);
  for (const attr_def* definition : manager.GetAttrDefinitionIterator(db))
    manager.GetAttrDefinition(definition->name, db);
  for (const valtable* table : manager.GetValueTableIterator(db))
    manager.GetValueTable(table->name, db);
  for (const sigtype* type : manager.GetSignalTypeIterator(db))
    manager.GetSignalType(type->name, db);
}

/// Plans for all messages, and a frame for each.
void decode(const Input& input, const Start& start) {
  Reading opened(input.database);
  start();
  const ZelkFrameDecoderTable table(opened.database().messages);
  const std::vector<unsigned char> frame(64);
  for (const msgblk* message = opened.database().messages; message; message = message->next) {
    const ZelkFrameDecoder* const decoder = table.Find(*message);
    if (!decoder) continue;
    std::vector<double> values(decoder->SignalCount());
    std::vector<std::uint64_t> present(decoder->PresenceWords());
    decoder->Decode(frame.data(), frame.size(), values.data(), present.data());
    ZelkFrameEncoder(*message).Encode(values.data(), present.data(),
                                      std::vector<unsigned char>(64).data(), 64);
  }
}

/// What decodes logs, made ready.
void prepare_logs(const Input& input, const Start& start) {
  Reading opened(input.database);
  start();
  ZelkColumnDecoder columns({.values = ZelkColumnValues::kTexts, .match_groups = true});
  columns.AddDatabase(opened.database(), "a");
  columns.Tables();
  ZelkTextDecoder texts({.match_groups = true});
  texts.AddDatabase(opened.database(), "a");
  texts.Prepare();
  ZelkWideChoice choice;
  choice.AddDatabase(opened.database(), "a");
  const ZelkWideDecoder wide(choice);
}

/// A value that an attribute takes.
zelk_attr_value_t one(const ZelkDatabase& database, std::string_view attribute) {
  const attr_def* definition = database.attr_defs;
  while (definition && attribute != definition->name) definition = definition->next;
  zelk_attr_value_t value{};
  static char text[] = "1";
  if (definition && definition->value_type == ZELK_ATTR_STRING) {
    value.text = text;
  } else {
    value.number = 1;
  }
  return value;
}

/// One call for each way to make, set and delete something, on the first objects.
void edit(const Input& input, const Start& start) {
  Writing opened(input.database);
  ZelkWriteManager& manager = opened.manager;
  const char* const db = opened.name;
  start();
  for (int round = 0; round < 10; ++round) {
    symblk& node = *manager.CreateNode(db, 1U << 30);
    manager.SetName(node, "Fresh");
    msgblk& message = *manager.CreateMessage(db, 1U << 30);
    manager.SetName(message, "FreshMessage");
    manager.AddTransmitter(message, node);
    sigblk& signal = *manager.CreateSignal(message, 0);
    manager.SetName(signal, "FreshSignal");
    manager.AddReceiver(signal, node);
    manager.SetValueDescription(signal, 1, "one");
    siggroupblk& group = *manager.CreateSignalGroup(message, 0);
    manager.AddSignal(group, signal);
    manager.SetName(*manager.CreateEnvvar(db, 1U << 30), "FreshVariable");
    attr_def& definition = *manager.CreateAttrDefinition(db, 1U << 30);
    manager.SetAttrValue(db, "A1", one(opened.database(), "A1"));
    manager.SetAttrValue(message, "A", one(opened.database(), "A"));
    manager.DeleteAttrDefinition(definition, db);
    manager.DeleteSignal(signal, db);
    manager.DeleteMessage(message, db);
    manager.DeleteNode(node, db);
  }
}

void delete_first(const Input& input, const Start& start) {
  Writing opened(input.database);
  ZelkWriteManager& manager = opened.manager;
  ZelkDatabase& database = *manager.GetDatabase(opened.name);
  start();
  if (database.attr_defs) manager.DeleteAttrDefinition(*database.attr_defs);
  if (database.value_tables) manager.DeleteValueTable(*database.value_tables);
  if (database.signal_types) manager.DeleteSignalType(*database.signal_types);
  if (database.categories) manager.DeleteCategory(*database.categories);
  if (database.env_vars) manager.DeleteEnvvar(*database.env_vars);
  if (database.nodes) manager.DeleteNode(*database.nodes);
  if (database.messages && database.messages->signals)
    manager.DeleteSignal(*database.messages->signals);
  if (database.messages) manager.DeleteMessage(*database.messages);
}

/// A copy of all records, and the release of both.
void commit(const Input& input, const Start& start) {
  Reading reading(input.database);
  Writing writing(input.database);
  writing.manager.SetDatabaseComment(writing.name, "edited");
  start();
  writing.manager.CommitDatabase(writing.name);
  writing.manager.WriteDatabase(writing.name, input.out.c_str());
  writing.manager.CloseDatabase(writing.name, false);
  reading.manager.CloseDatabase(reading.name, false);
}

/// The effective attribute values and validity of all signals of one message, and its iterators.
void query(const Input& input, const Start& start) {
  Reading opened(input.database);
  ZelkManager& manager = opened.manager;
  const msgblk* const message = opened.database().messages;
  start();
  if (!message) return;
  manager.GetAttrValue(*message, "A");
  manager.SignalCount(*message);
  manager.GetSignal(*message, "no such name");
  const std::vector<unsigned char> frame(65536);
  const sigblk* last = nullptr;
  for (const sigblk* signal : manager.GetSignalIterator(*message)) last = signal;
  if (!last) return;
  double value = 0;
  manager.GetSignalPhysicalValue(frame.front(), *last, *message, value);
  manager.GetValueDescription(*last, 1);
}

/// Many small files in one manager, each asked for by its name and opened once more.
void open_many(const Input& input, const Start& start) {
  std::filesystem::create_directory(input.out);
  const auto path = [&](std::size_t i) { return input.out + "/D" + std::to_string(i) + ".dbc"; };
  for (std::size_t i = 0; i < input.count; ++i) std::ofstream(path(i)) << "BS_:\nBU_: N\n";
  start();
  ZelkManager manager(static_cast<void*>(nullptr));
  for (std::size_t i = 0; i < input.count; ++i) {
    const char* name = nullptr;
    expect(manager.OpenDatabase(path(i).c_str(), &name, 0) == ZelkErrorOk);
    expect(manager.OpenDatabase(path(i / 2).c_str(), nullptr, 0) == ZelkErrorAlreadyOpen);
    expect(manager.GetNode("N", name) != nullptr);
  }
  for (std::size_t i = 0; i < input.count; ++i)
    manager.CloseDatabase(manager.GetUniqueDatabaseName(("D" + std::to_string(i)).c_str()), true);
}

Operation operation(const char* name, void (*work)(const Input&, const Start&)) {
  return {name, [work](const Input& input) {
            return seconds_of([&](const Start& start) { work(input, start); });
          }};
}

}  // namespace

std::vector<Operation> library_operations() {
  return {operation("read", read),
          operation("write", write),
          operation("look up all objects", look_up),
          operation("decode and encode", decode),
          operation("prepare columns and lines", prepare_logs),
          operation("edit", edit),
          operation("delete the first of each kind", delete_first),
          operation("commit, write and close", commit),
          operation("query one message", query)};
}

std::vector<Operation> opening_operations() {
  return {operation("open and close many databases", open_many)};
}

}  // namespace zelk::bench
