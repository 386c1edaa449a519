#include "database/copier.hpp"

#include <utility>

#include "base/attribute_text.hpp"
#include "base/list.hpp"
#include "database/disown.hpp"
#include "model/inline_name.hpp"
#include "model/memory.hpp"
#include "model/release.hpp"
#include "model/without_raising.hpp"

namespace zelk {
namespace {

// Each says whether a record can take the place of a foreign one that is referred to.
template <typename Record>
bool stands_for(const Record& candidate, const Record& foreign) {
  const char* const name = foreign.name;
  return name && is_named(candidate, name);
}
bool stands_for(const cat& candidate, const cat& foreign) {
  return candidate.number == foreign.number;
}
bool stands_for(const attr_def& candidate, const attr_def& foreign) {
  return candidate.object_type == foreign.object_type &&
         candidate.value_type == foreign.value_type && is_named(candidate, foreign.name);
}

/// For records that own nothing and refer to nothing.
constexpr auto kNothingMore = [](const auto&, auto&) {};

}  // namespace

/// Records and what they own, in the source's order.
///
/// @param copy_members  called with each source record and its copy, which owns nothing yet
template <typename Record, typename CopyMembers>
Record* DatabaseCopier::copy_list(const Record* source, CopyMembers copy_members) const {
  PendingList<Record> copies;
  for (const Record& record : each(source)) {
    auto* const copy = create_record<Record>();
    *copy = record;
    copy->next = nullptr;
    disown(*copy);
    copies.push_back(copy);
    copy_members(record, *copy);
  }
  return copies.take();
}

/// Copies one of the database's lists, or leaves it empty when memory runs out.
template <typename Record, typename CopyMembers>
void DatabaseCopier::copy_whole(Record*& target, const Record* source, CopyMembers copy_members) {
  const bool is_copied = without_raising([&] {
    Owned<Record> copies(copy_list(source, copy_members));
    remember(source, copies.get());
    target = copies.release();
  });
  if (is_copied) return;
  is_complete_ = false;
  forget(source);
}

/// Makes `rebind` replace references to the records of `source` by those to `copy`, record by
/// record.
template <typename Record>
void DatabaseCopier::remember(const Record* source, Record* copy) {
  for (; source; source = source->next, copy = copy->next) copies_[source] = copy;
}

template <typename Record>
void DatabaseCopier::forget(const Record* source) {
  for (const Record& record : each(source)) copies_.erase(&record);
}

/// The copy of the referred record. For a record that is not the source's own: the first one of
/// `list` that stands for it, else null.
template <typename Record>
Record* DatabaseCopier::rebind(const Record* reference, Record* list) const {
  if (!reference) return nullptr;
  const auto found = copies_.find(reference);
  if (found != copies_.end()) return static_cast<Record*>(found->second);
  return find_first(
      list, [reference](const Record& candidate) { return stands_for(candidate, *reference); });
}

// --- Lists within records ---

void DatabaseCopier::copy_attr(const attr& value, attr& copy) const {
  copy.def = rebind(value.def, target_.attr_defs);
  if (!copy.def) return;
  if (copy.def->value_type == ZELK_ATTR_STRING) {
    copy.value.text = copy_of(value.value.text).release();
  } else {
    copy.value.number = value.value.number;
  }
}

attr* DatabaseCopier::copy_attrs(const attr* source) const {
  return copy_list(source, [this](const attr& value, attr& copy) { copy_attr(value, copy); });
}

val* DatabaseCopier::copy_values(const val* source) const {
  return copy_list(source, [](const val& description, val& copy) {
    copy.text = copy_of(description.text).release();
  });
}

void DatabaseCopier::copy_link(const rxblk& link, rxblk& copy) const {
  copy.node = rebind(link.node, target_.nodes);
  copy.attrs = copy_attrs(link.attrs);
}

rxblk* DatabaseCopier::copy_links(const rxblk* source) const {
  return copy_list(source, [this](const rxblk& link, rxblk& copy) { copy_link(link, copy); });
}

// --- The database's lists ---

bool DatabaseCopier::copy() {
  copy_definitions();
  copy_whole(target_.attr_values, source_.attr_values,
             [this](const attr& value, attr& copy) { copy_attr(value, copy); });
  copy_whole(target_.categories, source_.categories, kNothingMore);
  copy_whole(
      target_.value_tables, source_.value_tables,
      [this](const valtable& table, valtable& copy) { copy.values = copy_values(table.values); });
  copy_signal_types();
  copy_nodes();
  copy_messages();
  copy_variables();
  copy_whole(target_.bit_timings, source_.bit_timings, kNothingMore);
  copy_whole(target_.filter.categories, source_.filter.categories,
             [this](const catlink& link, catlink& copy) {
               copy.category = rebind(link.category, target_.categories);
             });
  copy_whole(target_.filter.nodes, source_.filter.nodes,
             [this](const rxblk& link, rxblk& copy) { copy_link(link, copy); });
  target_.filter.mode = source_.filter.mode;
  copy_texts();
  return is_complete_;
}

void DatabaseCopier::copy_definitions() {
  copy_whole(target_.attr_defs, source_.attr_defs, [](const attr_def& definition, attr_def& copy) {
    if (definition.value_type == ZELK_ATTR_ENUM) {
      copy.enum_values = copy_of(definition.enum_values).release();
    }
    if (has_text_default(definition)) {
      copy.default_value.text = copy_of(definition.default_value.text).release();
    }
  });
  for (const attr_def& copy : each(target_.attr_defs)) target_.predefined.Insert(copy);
}

void DatabaseCopier::copy_signal_types() {
  copy_whole(target_.signal_types, source_.signal_types,
             [this](const sigtype& type, sigtype& copy) {
               copy.valtable = rebind(type.valtable, target_.value_tables);
               copy.comment = copy_of(type.comment).release();
               copy.attrs = copy_attrs(type.attrs);
             });
}

void DatabaseCopier::copy_nodes() {
  copy_whole(target_.nodes, source_.nodes, [this](const symblk& node, symblk& copy) {
    copy.category = rebind(node.category, target_.categories);
    copy.name = copy_of(node.name).release();
    copy.comment = copy_of(node.comment).release();
    copy.attrs = copy_attrs(node.attrs);
  });
}

void DatabaseCopier::copy_messages() {
  copy_whole(target_.messages, source_.messages, [this](const msgblk& message, msgblk& copy) {
    copy.transmitter = rebind(message.transmitter, target_.nodes);
    copy.category = rebind(message.category, target_.categories);
    copy.name = copy_of(message.name).release();
    copy.comment = copy_of(message.comment).release();
    copy.attrs = copy_attrs(message.attrs);
    copy.tx_nodes = copy_links(message.tx_nodes);
    copy_signals(message, copy);
    copy_groups(message, copy);
    forget(message.signals);  // no other message may refer to them
  });
}

void DatabaseCopier::copy_signals(const msgblk& source, msgblk& copied_message) {
  copied_message.signals =
      copy_list(source.signals, [this, &copied_message](const sigblk& signal, sigblk& copy) {
        copy.message = &copied_message;
        copy.sigtype = rebind(signal.sigtype, target_.signal_types);
        copy.name = copy_of(signal.name).release();
        copy.comment = copy_of(signal.comment).release();
        copy.receivers = copy_links(signal.receivers);
        copy.attrs = copy_attrs(signal.attrs);
        copy.values = copy_values(signal.values);
        copy.mux_ranges = copy_list(signal.mux_ranges, kNothingMore);
      });
  remember(source.signals, copied_message.signals);
  for (sigblk& copy : each(copied_message.signals)) {
    copy.mux_signal = rebind(copy.mux_signal, copied_message.signals);
  }
}

void DatabaseCopier::copy_groups(const msgblk& source, msgblk& copied_message) const {
  copied_message.siggroups = copy_list(
      source.siggroups, [this, &copied_message](const siggroupblk& group, siggroupblk& copy) {
        copy.message = &copied_message;
        copy.comment = copy_of(group.comment).release();
        copy.extra = copy_list(group.extra, kNothingMore);
        copy.signals = copy_list(group.signals, [&](const siglistblk& member, siglistblk& entry) {
          entry.signal = rebind(member.signal, copied_message.signals);
        });
      });
}

void DatabaseCopier::copy_variables() {
  copy_whole(target_.env_vars, source_.env_vars,
             [this](const env_var_blk& variable, env_var_blk& copy) {
               copy.category = rebind(variable.category, target_.categories);
               copy.name = copy_of(variable.name).release();
               copy.comment = copy_of(variable.comment).release();
               copy.access_nodes = copy_links(variable.access_nodes);
               copy.attrs = copy_attrs(variable.attrs);
               copy.values = copy_values(variable.values);
             });
}

/// Copies one of the database's texts, or leaves the target's when memory runs out.
void DatabaseCopier::copy_whole(char*& target, const char* source) {
  is_complete_ &= without_raising([&] { assign_text(target, copy_of(source)); });
}

void DatabaseCopier::copy_texts() {
  copy_whole(target_.user_data, source_.user_data ? source_.user_data : "");
  copy_whole(target_.comment, source_.comment);
}

}  // namespace zelk
