#include <gtest/gtest.h>

#include "model/memory.hpp"

namespace {

void fill(char*& field) { field = zelk::copy_text("text").release(); }

/// Puts two records into an empty list and gives the first, which then gets whatever it can own.
template <typename Record>
Record* fill(Record*& head) {
  head = static_cast<Record*>(zelk_malloc(sizeof(Record)));
  head->next = static_cast<Record*>(zelk_malloc(sizeof(Record)));
  return head;
}

void fill_attrs(attr*& head, attr_def* definition) {
  fill(head)->def = definition;  // the second value has lost its definition
  fill(head->value.text);
}

void fill_links(rxblk*& head, attr_def* definition) { fill_attrs(fill(head)->attrs, definition); }

template <typename Object>
Object* fill_object(Object*& head, attr_def* definition) {
  fill(fill(head)->name);
  fill(head->comment);
  fill_attrs(head->attrs, definition);
  return head;
}

// The sanitizer's leak check tells what stays behind, its heap check what is touched too late.
TEST(Release, TakesAWholeDatabase) {
  attr_def* definitions;
  fill(definitions)->value_type = ZELK_ATTR_STRING;
  fill(definitions->default_value.text);
  definitions->next->value_type = ZELK_ATTR_ENUM;
  fill(definitions->next->enum_values);
  fill(definitions->next->default_value.text);
  fill(definitions->next->next)->default_value.number = 5;
  msgblk* messages;
  fill_links(fill_object(messages, definitions)->tx_nodes, definitions);
  sigblk* signal = fill_object(messages->signals, definitions);
  fill_links(signal->receivers, definitions);
  fill(fill(signal->values)->text);
  fill(signal->mux_ranges);
  fill(fill(messages->siggroups)->comment);
  fill(messages->siggroups->signals);
  fill(messages->siggroups->extra);
  env_var_blk* variables;
  fill_links(fill_object(variables, definitions)->access_nodes, definitions);
  fill(fill(variables->values)->text);
  valtable* tables;
  fill(fill(fill(tables)->values)->text);
  sigtype* types;
  fill(fill(types)->comment);
  fill_attrs(types->attrs, definitions);
  symblk* nodes;
  attr* values;
  fill_attrs(values, definitions);
  btlblk* timings;
  cat* categories;
  char *comment, *version;
  fill(comment);
  fill(version);
  filter_t filter{};
  fill(filter.categories);
  fill_links(filter.nodes, definitions);
  filter.mode = 3;
  zelk_free(fill_object(nodes, definitions), messages, variables, fill(timings), definitions,
            values, fill(categories), &filter, comment, version, types, tables);
  EXPECT_EQ(filter.categories, nullptr);
  EXPECT_EQ(filter.nodes, nullptr);
  EXPECT_EQ(filter.mode, 0);
}

}  // namespace
