#include <gtest/gtest.h>

#include <limits>

#include "database/own_database.hpp"
#include "support/paths.hpp"

namespace {

constexpr char kWholeFile[] = ZELK_SOURCE_DIR "/tests/writer/whole.dbc";

struct Sample : Database {
  Sample() { EXPECT_EQ(read_file(kWholeFile), 0u); }
  sigblk& s() { return *messages->signals; }
  sigblk& t() { return *s().next; }
};

symblk stranger{};
cat unlisted{0, 7, "", nullptr};
sigtype unlisted_type{};
valtable unlisted_table{};

struct Case {
  void (*edit)(Sample& d);
  const char* fault;
  uint32_t number;  ///< what the reader says to the file that `zelk_write` makes of it
};

// A number of 0 stands where the file is read, but gives another record.
const Case kCases[] = {
    {[](Sample& d) { d.s().length = 0; }, "signal M::S: its length is 0", 12},
    {[](Sample& d) { d.s().start_bit = 32768; }, "signal M::S: its start bit is above 32767", 1},
    {[](Sample& d) { d.s().factor = std::numeric_limits<double>::quiet_NaN(); },
     "signal M::S: its factor is 0", 0},
    {[](Sample& d) { d.s().factor = 0; }, "signal M::S: its factor is 0", 0},
    {[](Sample& d) { d.s().sigtype = &unlisted_type; },
     "signal M::S: the database does not hold its signal type", 1},
    {[](Sample& d) { d.types->valtable = &unlisted_table; },
     "signal type Y: the database does not hold its value table", 0},
    {[](Sample& d) { d.filter.categories->category = &unlisted; },
     "filter: the database does not hold a category of it", 28},
    {[](Sample& d) { d.s().minimum = d.s().maximum + 1; },
     "signal M::S: its minimum is above its maximum", 0},
    {[](Sample& d) { set(d.s().unit, std::string(33, 'u')); },
     "signal M::S: its unit is longer than 32 characters", 0},
    {[](Sample& d) { set(d.t().name, "BO_"); }, "signal M::BO_: its name is none of the format", 1},
    {[](Sample& d) { d.t().mux_signal = add_signal(d.messages->next, "X"); },
     "signal M::T: its multiplexor is no signal of its message", 20},
    {[](Sample& d) { add_signal(d.messages, "X")->mux_ranges = zelk_create_muxor_value_range(); },
     "signal M::X: the only multiplexor of its message would select it", 0},
    {[](Sample& d) { add_signal(d.messages, "X")->mux_signal = &d.s(); },
     "signal M::X: it has a multiplexor, but no value that selects it", 0},
    {[](Sample& d) {
       sigblk* const other = add_signal(d.messages, "S");
       zelk_add_multiplexor_value_range(other, &d.s(), 1, 2);
     },
     "signal M::S: the multiplexing of signals with one name cannot be told apart", 0},
    {[](Sample& d) {
       d.t().flags |= ZELK_SIGNAL_MULTIPLEXOR;
       d.s().mux_signal = &d.t();
       add_range(&d.s(), 1, 2);
     },
     "signal M::S: its multiplexors form a circle", 31},
    {[](Sample& d) { d.messages->dlc = 32768; }, "message M: its data length is above 32767", 1},
    {[](Sample& d) {
       sigblk* const signal =
           add_signal(append_named(d.messages, zelk_create_msgblk(), "Behind"), "X");
       signal->message->id = 1;
       set(signal->comment, "lost");
     },
     "message Behind: another message has its identifier, and would get what is said of it", 20},
    {[](Sample& d) {
       siggroupblk* const group =
           append_named(d.messages->next->siggroups, zelk_create_siggroup(d.messages->next), "G");
       group->signals = zelk_create_siglist(&d.s());
     },
     "message N: a signal group of it has a signal of another message", 20},
    // What says something of the second of two means the first.
    {[](Sample& d) { set(add_signal(d.messages, "S")->comment, "lost"); },
     "signal M::S: another signal has its name, and would get what is said of it", 0},
    {[](Sample& d) {
       append_named(d.variables, zelk_create_evblk(), "V")->type = ZELK_ENVVAR_DATA;
     },
     "environment variable V: another variable has its name, and would get what is said of it", 0},
    {[](Sample& d) {
       append_named(d.types, zelk_create_sigtype(), d.types->name)->value_type =
           ZELK_VALUE_IEEE_SINGLE;
     },
     "signal type Y: another signal type has its name, and would get what is said of it", 0},
    {[](Sample& d) {
       add_definition(d, ZELK_OBJ_NODE, "Twice", ZELK_ATTR_INT);
       add_value(d.nodes->attrs, add_definition(d, ZELK_OBJ_NODE, "Twice", ZELK_ATTR_STRING));
     },
     "node A: another definition has the name of Twice, and would get its value", 14},
    {[](Sample& d) {  // without one of its own kind, a value gets the first of the name
       add_definition(d, ZELK_OBJ_SIGNAL, "Twice", ZELK_ATTR_INT);
       add_value(d.nodes->attrs, add_definition(d, ZELK_OBJ_MESSAGE, "Twice", ZELK_ATTR_STRING));
     },
     "node A: another definition has the name of Twice, and would get its value", 14},
    {[](Sample& d) { d.messages->category = &unlisted; },
     "message M: the database does not hold its category", 28},
    {[](Sample& d) { set(d.nodes->name, ZELK_NO_NODE); },
     "node Ostrel__XXX: its name is none of the format", 0},
    {[](Sample& d) { append_named(d.nodes, zelk_create_symbol(), d.nodes->name); },
     "node A: another node has its name", 0},
    {[](Sample& d) { append(d.filter.nodes, zelk_create_rx(&stranger)); },
     "filter: the database does not hold a node of it", 20},
    {[](Sample& d) { d.timings->baudrate = 32768; }, "bit timing: its baud rate is above 32767", 1},
    {[](Sample& d) { d.variables->type = 4; },
     "environment variable V: its type is none of the format", 25},
    {[](Sample& d) { d.variables->access_type |= 0x8000; },
     "environment variable V: bit 15 of its access code means a string", 0},
    {[](Sample& d) { d.types->name[0] = '\0'; }, "signal type : its name is none of the format", 1},
    {[](Sample& d) { set(d.tables->name, std::string(33, 'n')); },
     "value table nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn: its name is none of the format", 0},
    {[](Sample& d) { add_definition(d, 9, "Kind", ZELK_ATTR_INT); },
     "attribute Kind: its kind of object is none of the format", 0},
    {[](Sample& d) { add_definition(d, -1, "Kind", ZELK_ATTR_INT); },
     "attribute Kind: its kind of object is none of the format", 0},
    {[](Sample& d) { add_definition(d, ZELK_OBJ_NODE, "Type", -1); },
     "attribute Type: its type is none of the format", 0},
    {[](Sample& d) { add_definition(d, ZELK_OBJ_NODE, "Type", 5); },
     "attribute Type: its type is none of the format", 0},
    {[](Sample& d) { add_definition(d, ZELK_OBJ_NODE, "E", ZELK_ATTR_ENUM, "a\nb", "c"); },
     "attribute E: its default is no item", 14},
    {[](Sample& d) {
       static attr_def unknown{};
       set(unknown.name, "Unknown");
       add_value(d.nodes->attrs, &unknown);
     },
     "node A: the database does not define an attribute of it", 21},
};

TEST(ReadBack, NamesWhatAFileCouldNotGive) {
  for (const Case& c : kCases) {
    Sample sample;
    ASSERT_EQ(fault_of(sample), "");
    c.edit(sample);
    EXPECT_EQ(fault_of(sample), c.fault);
    Database read_back;
    EXPECT_EQ(read_back.read(written(sample)), c.number) << c.fault << read_back.reported;
    EXPECT_TRUE(c.number != 0 || describe(read_back) != describe(sample)) << c.fault;
  }
}

// What refers to the second of two by its name means the first.
TEST(ReadBack, OfReferencesByName) {
  Sample types;
  types.s().sigtype = append_named(types.types, zelk_create_sigtype(), types.types->name);
  EXPECT_EQ(fault_of(types), "signal M::S: another signal type has the name of its signal type");
  Sample groups;
  siggroupblk* const group =
      append_named(groups.messages->siggroups, zelk_create_siggroup(groups.messages), "G");
  group->signals = zelk_create_siglist(add_signal(groups.messages, "S"));
  EXPECT_EQ(fault_of(groups),
            "message M: a signal group of it has the second of two signals with one name");
}

// A second message of one identifier can be saved unless a statement would name it, which means the
// first one.
TEST(ReadBack, OfMessagesWithOneIdentifier) {
  static attr_def definition{};
  const struct {
    const char* what;
    void (*edit)(msgblk& message, sigblk& signal);
  } cases[] = {
      {"comment", [](msgblk& m, sigblk&) { set(m.comment, "c"); }},
      {"value", [](msgblk& m, sigblk&) { add_value(m.attrs, &definition); }},
      {"category", [](msgblk& m, sigblk&) { m.category = &unlisted; }},
      {"signal group", [](msgblk& m, sigblk&) { m.siggroups = zelk_create_siggroup(&m); }},
      {"transmitters",
       [](msgblk& m, sigblk&) {
         for (int i = 0; i < 2; ++i) append(m.tx_nodes, zelk_create_rx(&stranger));
       }},
      {"comment of a signal", [](msgblk&, sigblk& s) { set(s.comment, "c"); }},
      {"ranges that select a signal",
       [](msgblk& m, sigblk& s) {
         sigblk* const multiplexor = add_signal(&m, "Mux");
         multiplexor->flags |= ZELK_SIGNAL_MULTIPLEXOR;
         zelk_add_multiplexor_value_range(&s, multiplexor, 1, 2);
       }},
      {"value of a signal", [](msgblk&, sigblk& s) { add_value(s.attrs, &definition); }},
      {"IEEE number", [](msgblk&, sigblk& s) { s.value_type = ZELK_VALUE_IEEE_SINGLE; }},
      {"descriptions", [](msgblk&, sigblk& s) { append(s.values, zelk_create_value()); }},
      {"signal type", [](msgblk&, sigblk& s) { s.sigtype = &unlisted_type; }},
      {"value of a receiver",
       [](msgblk&, sigblk& s) {
         append(s.receivers, zelk_create_rx(&stranger));
         add_value(s.receivers->attrs, &definition);
       }},
  };
  for (const auto& c : cases) {
    Sample sample;
    sigblk* const signal =
        add_signal(append_named(sample.messages, zelk_create_msgblk(), "Behind"), "X");
    signal->message->id = 1;
    EXPECT_EQ(fault_of(sample), "");
    c.edit(*signal->message, *signal);
    EXPECT_EQ(fault_of(sample).substr(0, 48), "message Behind: another message has its identifi")
        << c.what;
  }
}

TEST(ReadBack, KeepsADatabaseFromBeingSaved) {
  const TemporaryFile file(content_of(kWholeFile));
  OwnDatabase database(file.path());
  database.messages->signals->length = 0;
  zelk_clear_error_text();
  EXPECT_EQ(database.Write(nullptr), ZelkErrorNotWritten);
  EXPECT_STREQ(zelk_get_error_text(), "database: format error, signal M::S: its length is 0\n");
  EXPECT_EQ(content_of(file.path()), content_of(kWholeFile));
  database.messages->signals->length = 8;
  EXPECT_EQ(database.Write(nullptr), ZelkErrorOk);
}

}  // namespace
