#include <gtest/gtest.h>

#include <cstring>

#include "capi/linked.hpp"
#include "zelk/query.h"

namespace {

template <typename Record>
void expect_lookups(Record* (*by_name)(Record*, const char*), Record* (*nth)(Record*, int32_t)) {
  std::vector<Record> records(3);  // the first has no name
  records[1].name = records[2].name = text("Engine");
  Record* head = linked(records);
  EXPECT_EQ(by_name(head, "Engine"), &records[1]);
  EXPECT_EQ(by_name(head, nullptr), nullptr);
  for (const char* key : {"engine", "Engin", "Engine2"}) EXPECT_EQ(by_name(head, key), nullptr);
  EXPECT_EQ(nth(head, INT32_MIN), head);
  EXPECT_EQ(nth(head, 3), &records[2]);
  EXPECT_EQ(nth(head, 4), nullptr);
}

// A key may be longer than the 32 characters of an inline name.
constexpr char kName[] = "abcdefghijklmnopqrstuvwxyz012345";
constexpr char kKey[] = "abcdefghijklmnopqrstuvwxyz0123456789";

template <typename Record>
std::vector<Record> inline_named() {
  std::vector<Record> records(3);
  std::strcpy(records[0].name, "abc");
  std::strcpy(records[1].name, kName);
  std::strcpy(records[2].name, kName);
  return records;
}

template <typename Record>
void expect_inline_names(Record* (*find)(Record*, const char*)) {
  auto records = inline_named<Record>();
  for (const char* key : {kName, kKey}) EXPECT_EQ(find(linked(records), key), &records[1]);
  EXPECT_EQ(find(records.data(), nullptr), nullptr);
  for (const char* key : {"abcd", "ABC", ""}) EXPECT_EQ(find(linked(records), key), nullptr);
}

TEST(Lookup, ByNameAndByPosition) {
  expect_lookups(zelk_get_message_name, zelk_get_message_n);
  expect_lookups(zelk_get_symbol_name, zelk_get_symbol_n);
  expect_lookups(zelk_get_evblk_name, zelk_get_evblk_n);
  expect_inline_names(zelk_get_sigtype_name);
  expect_inline_names(zelk_get_valtable_name);
  expect_inline_names(zelk_get_attr_def_name);
}

TEST(Lookup, ByNumber) {
  std::vector<btlblk> timings(2);
  timings[1].baudrate = 500;
  EXPECT_EQ(zelk_get_btlblk(linked(timings), 500), &timings[1]);
  EXPECT_EQ(zelk_get_btlblk(timings.data(), 0x10000 + 500), nullptr);
  std::vector<cat> categories(2);
  categories[1].number = -1;
  EXPECT_EQ(zelk_get_category(linked(categories), -1), &categories[1]);
  EXPECT_EQ(zelk_get_category(categories.data(), 0xFFFF), nullptr);

  sigblk signals[2]{};
  signals[0].name = text("Brake");
  signals[1].name = text("Engine");
  std::vector<msgblk> messages(3);
  messages[0].id = 5;
  messages[1].id = messages[2].id = 0x80000005;
  messages[1].signals = &signals[0];
  messages[2].signals = &signals[1];
  EXPECT_EQ(zelk_get_signal(linked(messages), 0x80000005, "Brake"), &signals[0]);
  EXPECT_EQ(zelk_get_signal(messages.data(), 0x80000005, "Engine"), nullptr);
  EXPECT_EQ(zelk_get_signal_of_msg_n(nullptr, 1), nullptr);
  EXPECT_EQ(zelk_get_signal_of_msg_n(&messages[1], 2), nullptr);
  EXPECT_EQ(zelk_get_sig_factor(nullptr) + zelk_get_sig_offset(nullptr), 0);
}

TEST(Lookup, FileCommentIsCutToTheBuffer) {
  const char* const texts[] = {"####", "", "b", "bu", "bus", "bus"};  // by size of the buffer
  for (uint32_t size = 0; size < 6; ++size) {
    char buffer[] = "####";
    EXPECT_EQ(zelk_get_file_comment("bus", buffer, size), size ? std::strlen(texts[size]) : 0);
    EXPECT_STREQ(buffer, texts[size]);
    EXPECT_EQ(zelk_get_file_comment(nullptr, buffer, size), 0u);
    EXPECT_STREQ(buffer, size ? "" : "####");
  }
}

TEST(Attributes, TheFirstDefinitionOfTheNameAnswers) {
  auto definitions = inline_named<attr_def>();
  definitions[1].object_type = ZELK_OBJ_MESSAGE;
  definitions[1].value_type = ZELK_ATTR_FLOAT;
  definitions[2].object_type = ZELK_OBJ_SIGNAL;
  attr_def* head = linked(definitions);
  EXPECT_EQ(zelk_get_attrtype(head, kKey), 1u);
  EXPECT_EQ(zelk_is_attribute_defined_for_type(head, ZELK_OBJ_MESSAGE, kKey), 1);
  EXPECT_EQ(zelk_is_attribute_defined_for_type(head, ZELK_OBJ_SIGNAL, kKey), 0);
  EXPECT_EQ(zelk_get_attrdefault(head, "Unknown").text, nullptr);
}

template <typename Object, typename IsDefined, typename Get>
void expect_values(IsDefined is_defined, Get get) {
  auto definitions = inline_named<attr_def>();
  attr values[3]{};  // the first has lost its definition
  values[0].next = &values[1];
  values[1] = {&definitions[1], {2}, &values[2]};
  values[2] = {&definitions[1], {3}, nullptr};
  Object object{};
  EXPECT_EQ(is_defined(nullptr, kKey), 0);
  EXPECT_EQ(get(nullptr, kKey).text, nullptr);
  object.attrs = values;
  EXPECT_EQ(is_defined(&object, nullptr), 0);
  EXPECT_EQ(is_defined(&object, kKey), 1);
  EXPECT_EQ(get(&object, kKey).number, 2);
  EXPECT_EQ(zelk_is_db_attribute_defined(values, kKey), 1);
  EXPECT_EQ(zelk_get_db_attrval(values, kKey).number, 2);
}

TEST(Attributes, TheFirstValueOfTheObjectAnswers) {
  expect_values<msgblk>(zelk_is_msg_attribute_defined, zelk_get_msg_attrval);
  expect_values<env_var_blk>(zelk_is_ev_attribute_defined, zelk_get_ev_attrval);
}

TEST(ValueDescriptions, TheFirstMatchAnswers) {
  std::vector<val> descriptions{{9, nullptr, nullptr},
                                {1, text("on"), nullptr},
                                {1, text("active"), nullptr},
                                {-2, text("on"), nullptr}};
  sigblk signal{};
  EXPECT_EQ(zelk_get_sig_enumsymbol(&signal, 0), nullptr) << "tells 0 from an unknown text";
  EXPECT_EQ(zelk_get_ev_enumsymbol(nullptr, 0), nullptr);
  EXPECT_EQ(zelk_get_ev_enumvalue(nullptr, "on"), 0u);
  EXPECT_EQ(zelk_get_sig_enumvalue(&signal, nullptr), 0u);
  signal.values = linked(descriptions);
  EXPECT_STREQ(zelk_get_sig_enumsymbol(&signal, 1), "on");
  EXPECT_EQ(zelk_get_sig_enumvalue(&signal, "on"), 1u);
  EXPECT_EQ(zelk_get_sig_enumvalue(&signal, "unknown"), 0u);
}
}  // namespace
