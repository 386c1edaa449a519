#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/release.hpp"
#include "support/building.hpp"
#include "support/failing.hpp"

namespace {

using testing::ElementsAre;

char* text(const char* content) { return zelk::copy_text(content).release(); }

template <typename Owner, typename Record>
void expect_insertion(void* (*insert)(Owner*, Record*, uint32_t), Owner* owner, Record*& head) {
  Record a{}, b{}, c{}, d{}, e{};
  EXPECT_EQ(insert(owner, &a, 0), owner);
  EXPECT_EQ(insert(owner, &b, 1), &a);
  EXPECT_EQ(insert(owner, &c, 1), &a);
  EXPECT_EQ(insert(owner, &d, 3), &b);
  EXPECT_EQ(insert(owner, &e, 0), owner);
  EXPECT_THAT(records_of(head), ElementsAre(&e, &a, &c, &b, &d));
}

template <typename Record>
void expect_deletion(void (*remove)(Record**, Record*), Record* (*create)()) {
  Record *const a = create(), *const b = create(), *const c = create(), *const stranger = create();
  Record* head = a;
  a->next = b;
  b->next = stranger->next = c;
  remove(&head, nullptr);
  remove(&head, stranger);
  EXPECT_THAT(records_of(head), ElementsAre(a, b, c));
  remove(&head, b);
  EXPECT_THAT(records_of(head), ElementsAre(a, c));
  remove(&head, a);
  EXPECT_THAT(records_of(head), ElementsAre(c));
  remove(&head, c);
  EXPECT_EQ(head, nullptr);
}

TEST(Lists, InsertBehindAPositionAndDeleteAnyRecord) {
  msgblk* messages = nullptr;
  expect_insertion(can_insert_msg, &messages, messages);
  expect_deletion(can_delete_msg, zelk_create_msgblk);
  expect_deletion(can_delete_attr_def, zelk_create_attr_def);
  msgblk message{};
  expect_insertion(can_insert_sig, &message, message.signals);
  EXPECT_EQ(message.signal_count, 0);
}

/// Expects that a deletion takes neither a list nor a record that is not there.
template <typename Owner, typename Record>
void expect_nothing_to_delete(void (*remove)(Owner*, Record*)) {
  Owner owner{};
  Record record{};
  remove(nullptr, &record);
  remove(&owner, nullptr);
  remove(nullptr, nullptr);
}

TEST(Lists, DeleteNothingWithoutAListOrARecord) {
  expect_nothing_to_delete(can_delete_symbol);
  expect_nothing_to_delete(can_delete_msg);
  expect_nothing_to_delete(can_delete_evblk);
  expect_nothing_to_delete(can_delete_btl);
  expect_nothing_to_delete(can_delete_attr_def);
  expect_nothing_to_delete(can_delete_category);
  expect_nothing_to_delete(can_delete_sigtype);
  expect_nothing_to_delete(can_delete_valtable);
  expect_nothing_to_delete(can_delete_sig);
  expect_nothing_to_delete(can_delete_siggroup);
  expect_nothing_to_delete(can_delete_multiplexor_value_range);
  can_delete_siglist(nullptr);
  can_deallocate_sig(nullptr);
  can_deallocate_siggroup(nullptr);
  zelk_remove_multiplexor(nullptr);
}

TEST(Lists, DeleteTheDefaultOfADefinitionOfTexts) {
  attr_def* head = zelk_create_attr_def();
  head->value_type = ZELK_ATTR_STRING;
  head->default_value.text = text("goes");
  can_delete_attr_def(&head, head);
  EXPECT_EQ(head, nullptr);
}

// What a deletion leaves alone the test releases: the address sanitizer tells what goes twice or
// never.

/// Expects that the deletion of `object` takes its comment and leaves its name and attribute
/// values.
template <typename Object>
void expect_bare_deletion(Object* object, void (*remove)(Object**, Object*)) {
  const zelk::OwnedText name(object->name = text("stays"));
  const zelk::Owned<attr> value(object->attrs = static_cast<attr*>(zelk_malloc(sizeof(attr))));
  object->comment = text("goes");
  remove(&object, object);
}

TEST(Deletion, LeavesWhatItDoesNotName) {
  expect_bare_deletion(zelk_create_symbol(), can_delete_symbol);
  env_var_blk* const variable = zelk_create_evblk();
  const zelk::Owned<rxblk> access(variable->access_nodes = zelk_create_rx(nullptr));
  const zelk::Owned<val> meaning(variable->values = zelk_create_value());
  expect_bare_deletion(variable, can_delete_evblk);

  msgblk* const message = zelk_create_msgblk();
  const zelk::Owned<rxblk> transmitter(message->tx_nodes = zelk_create_tx(nullptr));
  const zelk::Owned<siggroupblk> kept_group(message->siggroups = zelk_create_siggroup(message));
  sigblk *const signal = zelk_create_sigblk(), *const other = zelk_create_sigblk();
  signal->message = other->message = message;
  message->signals = signal;
  signal->next = other;
  signal->receivers = zelk_create_rx(nullptr);
  signal->comment = text("goes");
  const zelk::OwnedText signal_name(signal->name = text("stays"));
  // Each selects the other: neither may be looked at once it is gone.
  zelk_add_multiplexor_value_range(signal, other, 1, 2);
  zelk_add_multiplexor_value_range(other, signal, 3, 4);
  expect_bare_deletion(message, can_delete_msg);

  attr_def* definition = zelk_create_attr_def();
  definition->value_type = ZELK_ATTR_ENUM;
  definition->enum_values = text("goes");
  const zelk::OwnedText enum_default(definition->default_value.text = text("stays"));
  can_delete_attr_def(&definition, definition);

  msgblk owner{};
  siggroupblk* const first = owner.siggroups = zelk_create_siggroup(&owner);
  siggroupblk* const group = first->next = zelk_create_siggroup(&owner);
  group->signals = zelk_create_siglist(nullptr);
  group->comment = text("goes");
  const zelk::OwnedBlock<siggroup_extra> extra(
      group->extra = static_cast<siggroup_extra*>(zelk_malloc(sizeof(siggroup_extra))));
  can_delete_siggroup(&owner, group);
  EXPECT_THAT(records_of(owner.siggroups), ElementsAre(first));
  can_delete_siggroup(&owner, first);
  EXPECT_EQ(owner.siggroups, nullptr);
  can_deallocate_siggroup(nullptr);
  can_delete_siglist(nullptr);
}

TEST(Release, TakesValuesWithoutDefinitionsAndEmptiesTheFilter) {
  attr* values = nullptr;
  for (int i = 0; i < 2; ++i) add_value(values, nullptr);
  filter_t filter{zelk::create_record<catlink>(), zelk_create_rx(nullptr), 3};
  add_value(filter.nodes->attrs, nullptr);
  zelk_free(nullptr, nullptr, nullptr, nullptr, nullptr, values, nullptr, &filter, nullptr, nullptr,
            nullptr, nullptr);
  EXPECT_TRUE(!filter.categories && !filter.nodes && filter.mode == 0);
}

TEST(Lists, OfMissingRecordsStayAsTheyAre) {
  Database database;
  symblk *const node = zelk_create_symbol(), *const last = zelk_create_symbol();
  symblk*& head = database.nodes;
  EXPECT_EQ(can_insert_symbol(&head, node, 3), &head) << "behind the last of none";
  EXPECT_EQ(can_insert_symbol(&head, last, 3), node) << "behind the last";
  EXPECT_EQ(can_insert_symbol(&head, nullptr, 0), nullptr);
  EXPECT_EQ(can_insert_symbol(nullptr, node, 0), nullptr);
  sigblk signal{};
  EXPECT_EQ(can_insert_sig(nullptr, &signal, 0), nullptr);
  can_delete_symbol(nullptr, node);
  can_delete_sig(nullptr, &signal);
  can_delete_siggroup(nullptr, nullptr);
  can_delete_multiplexor_value_range(nullptr, nullptr);
  EXPECT_THAT(records_of(head), ElementsAre(node, last));
}

/// A message with two possible multiplexors and two signals to be selected.
class Multiplexing : public testing::Test {
 protected:
  Multiplexing() {
    for (sigblk* signal : {b_, a_, second_, first_}) {
      signal->message = &message_;
      can_insert_sig(&message_, signal, 0);
    }
    first_->flags = ZELK_SIGNAL_SIGNED;
  }
  ~Multiplexing() override { can_delete_siglist(message_.signals); }

  msgblk message_{};
  sigblk *const first_ = zelk_create_sigblk(), *const second_ = zelk_create_sigblk();
  sigblk *const a_ = zelk_create_sigblk(), *const b_ = zelk_create_sigblk();
};

TEST_F(Multiplexing, NewMultiplexorDropsTheRangesOfTheOld) {
  zelk_add_multiplexor_value_range(a_, first_, 1, 1);
  zelk_add_multiplexor_value_range(b_, first_, 2, 2);
  muxor_val_range* const range = zelk_add_multiplexor_value_range(a_, second_, 3, 3);
  EXPECT_THAT(records_of(a_->mux_ranges), ElementsAre(range));
  EXPECT_EQ(a_->mux_signal, second_);
  EXPECT_EQ(second_->flags, 4);
  EXPECT_EQ(first_->flags, 6) << "still selects b";
  for (sigblk* signal : {b_, b_, static_cast<sigblk*>(nullptr)}) {
    EXPECT_EQ(zelk_add_multiplexor_value_range(signal, nullptr, 4, 4), nullptr);
    EXPECT_EQ(b_->mux_signal, nullptr);
    EXPECT_EQ(b_->mux_ranges, nullptr);
    EXPECT_EQ(first_->flags, 2) << "selects nothing now";
  }
}

TEST_F(Multiplexing, EndsWithTheLastRangeOrTheSignal) {
  muxor_val_range* const old = zelk_add_multiplexor_value_range(a_, first_, 5, 3);
  muxor_val_range* const range = zelk_add_multiplexor_value_range(a_, first_, 0, 0xFFFFFFFF);
  EXPECT_THAT(records_of(a_->mux_ranges), ElementsAre(range, old));
  EXPECT_EQ(old->low, 5u);
  EXPECT_EQ(old->high, 3u);
  can_delete_multiplexor_value_range(a_, old);
  EXPECT_THAT(records_of(a_->mux_ranges), ElementsAre(range));
  EXPECT_EQ(first_->flags, 6);
  can_delete_multiplexor_value_range(a_, range);
  EXPECT_EQ(a_->mux_signal, nullptr);
  EXPECT_EQ(first_->flags, 2);
  zelk_add_multiplexor_value_range(b_, first_, 1, 1);
  can_delete_sig(&message_, b_);
  EXPECT_THAT(records_of(message_.signals), ElementsAre(first_, second_, a_));
  EXPECT_EQ(first_->flags, 2);
}

TEST_F(Multiplexing, OfSignalsThatGoTogetherLeavesOtherFlags) {
  for (const bool has_memory : {true, false}) {
    first_->flags = second_->flags = 0xFFF8;  // a host's own bits
    sigblk *const c = zelk_create_sigblk(), *const d = zelk_create_sigblk();
    b_->next = c;
    c->next = d;
    c->message = d->message = &message_;
    zelk_add_multiplexor_value_range(b_, first_, 1, 1);
    zelk_add_multiplexor_value_range(c, first_, 2, 2);
    zelk_add_multiplexor_value_range(d, second_, 3, 3);
    const FailingNew failing(has_memory ? 1000 : 0);
    can_delete_siglist(c);
    b_->next = nullptr;
    EXPECT_EQ(failing.has_failed(), !has_memory);
    EXPECT_EQ(first_->flags, 0xFFFC) << "still selects b";
    EXPECT_EQ(second_->flags, 0xFFF8);
  }
}

}  // namespace
