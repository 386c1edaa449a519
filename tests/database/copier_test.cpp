#include <algorithm>
#include <memory>
#include <vector>

#include "database/own_database.hpp"
#include "support/failing.hpp"
#include "support/paths.hpp"

namespace {

using Copy = DatabaseTest;

const std::string kEveryStatement = ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc";

/// Renames all records that others refer to by their places in the lists: the description then
/// shows what each reference leads to. A reference to a foreign record shows its old name.
void number(ZelkDatabase& d, const std::string& mark = "") {
  int count = 0;
  const auto rename = [&](auto* list) {
    for (; list; list = list->next) set(list->name, mark + std::to_string(++count));
  };
  const auto rename_all = [&](auto*... lists) { (rename(lists), ...); };
  rename_all(d.nodes, d.messages, d.categories, d.attr_defs, d.signal_types, d.value_tables);
  for (const auto* message = d.messages; message; message = message->next) rename(message->signals);
}

/// Lengths of the lists and whether there are the texts.
std::vector<std::size_t> sizes(const ZelkDatabase& d) {
  const auto lengths = [](auto*... lists) {
    return std::vector<std::size_t>{records_of(lists).size()...};
  };
  auto sizes =
      lengths(d.attr_defs, d.attr_values, d.categories, d.value_tables, d.signal_types, d.nodes,
              d.messages, d.env_vars, d.bit_timings, d.filter.nodes, d.filter.categories);
  for (const char* text : {d.user_data, d.comment, d.path})
    sizes.push_back(text ? std::string_view(text).size() : 0);
  return sizes;
}

// Many records that are referred to have a namesake in front of them.
TEST_F(Copy, HasAllRecordsForItself) {
  for (const char* file : {"/tests/data/ok_every_statement.dbc", "/tests/writer/whole.dbc",
                           "/examples/powertrain.dbc"}) {
    const std::string path = std::string(ZELK_SOURCE_DIR) + file;
    auto source = std::make_unique<OwnDatabase>(path);
    set(source->CreateNode(0)->name, "A");
    source->CreateCategory(0)->number = 1;
    set(source->CreateValueTable(0)->name, "Gears");
    set(source->CreateSignalType(0)->name, "Celsius");
    for (const char* name : {"Var", "Sig", "RelSig", "SystemSignalLongSymbol"}) {
      attr_def* const definition = source->CreateAttrDef(0);
      set(definition->name, name);
      definition->object_type = ZELK_OBJ_ENVVAR;
      definition->value_type = ZELK_ATTR_STRING;
    }
    msgblk* const message = source->messages;
    sigblk* const signal = zelk_create_sigblk();
    set(signal->name, "T");
    can_insert_sig(message, signal, 0);
    signal->message = message;
    siggroupblk* const group = append(message->siggroups, zelk_create_siggroup(message));
    int item = 0;
    set(group->comment, "a group");
    append(group->extra, zelk::create_record<siggroup_extra>())->item = &item;
    source->ref_count = source->cache_count = 4;
    source->write_ext_mux = 0;
    const std::string before = describe(*source);
    OwnDatabase copy(*source);
    EXPECT_EQ(describe(*source), before) << "changed by the copy, " << path;
    EXPECT_EQ(describe(copy), before) << path;
    EXPECT_EQ(copy.predefined.slots[0], copy.attr_defs);
    number(*source);
    number(copy);
    const std::string numbered = describe(*source);
    source.reset();
    EXPECT_EQ(describe(copy), numbered) << path;
    EXPECT_EQ(copy.path, path);
    EXPECT_EQ(copy.ref_count, 1u);
    EXPECT_EQ(copy.cache_count, 0u);
    EXPECT_EQ(copy.write_ext_mux, 0);
    const siggroupblk& copied = *records_of(copy.messages->siggroups).back();
    EXPECT_STREQ(copied.comment, "a group");
    EXPECT_EQ(copied.extra->item, &item);
    EXPECT_EQ(copied.extra->next, nullptr);
  }
}

TEST_F(Copy, TurnsForeignReferencesByNameOrDropsThem) {
  OwnDatabase foreign(kEveryStatement);
  for (const bool has_namesakes : {true, false}) {
    const OwnDatabase own(kEveryStatement);
    OwnDatabase source;
    if (has_namesakes) source.assign(own);
    msgblk* const message = source.CreateMessage(1000);
    set(message->name, "Foreign");
    message->transmitter = foreign.nodes->next;
    message->category = foreign.categories;
    add_value(message->attrs, foreign.GetAttrDef("Msg"))->value.number = 2;
    append(message->tx_nodes, zelk_create_tx(foreign.nodes));
    sigblk* const signal = add_signal(message, "T");
    signal->sigtype = foreign.signal_types;
    signal->mux_signal = foreign.messages->signals;
    append(message->siggroups, zelk_create_siggroup(message))->signals =
        zelk_create_siglist(foreign.messages->signals->next);
    sigtype* const type = source.CreateSignalType(1000);
    type->valtable = foreign.value_tables;
    append(source.filter.categories, zelk::create_record<catlink>())->category = foreign.categories;
    source.filter.mode = -3;

    const OwnDatabase copy(source);
    const msgblk* const copied = copy.GetMessage("Foreign");
    const sigblk* const copied_signal = copied->signals;
    const sigtype* last = copy.signal_types;
    while (last->next) last = last->next;
    EXPECT_EQ(copied->transmitter, copy.GetNode("B"));
    EXPECT_EQ(copied->category, copy.categories);
    EXPECT_EQ(copied->tx_nodes->node, copy.GetNode("A"));
    EXPECT_EQ(copied->attrs->def, copy.GetAttrDef("Msg"));
    EXPECT_EQ(copied_signal->sigtype, copy.GetSignalType("Celsius"));
    EXPECT_EQ(copied_signal->mux_signal, nullptr) << "no signal of the message has the name";
    EXPECT_EQ(copied->siggroups->signals->signal, copied_signal);
    EXPECT_EQ(last->valtable, copy.value_tables);
    EXPECT_EQ(copy.filter.mode, -3);
    EXPECT_EQ(copy.nodes != nullptr, has_namesakes);
  }
}

TEST_F(Copy, AssignedKeepsWhatTheTargetIs) {
  const OwnDatabase source(kEveryStatement);
  OwnDatabase target(folder_.write("target.dbc", "BS_:\nBU_: Z\nCM_ \"old\";\n")), empty;
  target.ref_count = 4;
  target.write_ext_mux = 0;
  target.symbols_shortened = 1;
  const int64_t time = target.file_time;
  for (const bool is_itself : {false, false, true}) {
    target.assign(is_itself ? target : source);
    EXPECT_EQ(describe(target), describe(source));
    EXPECT_EQ(target.path, kEveryStatement);
    EXPECT_NE(target.path, source.path);
    EXPECT_EQ(target.ref_count, 4U);
    EXPECT_EQ(target.file_time, time);
    EXPECT_EQ(target.symbols_shortened, 1);
    EXPECT_EQ(target.write_ext_mux, 0);
  }
  empty.Clear();
  target.assign(empty);
  EXPECT_EQ(target.path, nullptr);
  EXPECT_STREQ(target.user_data, "");
  EXPECT_EQ(describe(target), "");
}

/// Copies while each allocation in turn fails: only the list that it was for is missing.
template <typename Failure>
std::size_t copy_while_allocations_fail(const ZelkDatabase& source) {
  const auto complete = sizes(source);
  const std::string before = describe(source);
  for (std::size_t n = 0;; ++n) {
    OwnDatabase copy;
    zelk_clear_error_text();
    if (!fails_at<Failure>(n, [&] { copy.assign(source); })) {
      EXPECT_EQ(describe(copy), before);
      return n;
    }
    EXPECT_STREQ(zelk_get_error_text(), "not enough memory\n") << n;
    const auto copied = sizes(copy);
    int missing = 0;
    for (std::size_t i = 0; i < complete.size(); ++i) {
      if (copied[i] == complete[i]) continue;
      EXPECT_EQ(copied[i], 0u) << i << ", " << n;
      ++missing;
    }
    EXPECT_EQ(missing, 1) << n;
    const TemporaryFile file("");
    set(copy.path, file.path());
    EXPECT_EQ(copy.Write(nullptr), 9) << "a file would lose the list, allocation " << n;
    copy.SetUserData(nullptr);
    number(copy, "own");
    EXPECT_EQ(describe(copy).find("Q__"), std::string::npos)
        << "a foreign record, allocation " << n;
  }
}

TEST_F(Copy, LacksOneListWithoutMemory) {
  OwnDatabase source(kEveryStatement);
  number(source, "Q__");
  EXPECT_GT(copy_while_allocations_fail<FailingCalloc>(source), 80u);
  EXPECT_GT(copy_while_allocations_fail<FailingNew>(source), 10u);
}

}  // namespace
