#include "model/release.hpp"

#include "base/attribute_text.hpp"

namespace zelk {
namespace {

bool owns_text(const attr& value) { return value.def && value.def->value_type == ZELK_ATTR_STRING; }

void release_members(attr& value) {
  if (owns_text(value)) zelk_mfree(value.value.text);
}

void release_members(val& description) { zelk_mfree(description.text); }

void release_members(rxblk& link) { release_list(link.attrs); }

void release_members(siggroupblk& group) {
  release_list(group.signals);
  release_list(group.extra);
  zelk_mfree(group.comment);
}

void release_members(sigblk& signal) {
  release_list(signal.receivers);
  release_list(signal.values);
  zelk_mfree(signal.comment);
  zelk_mfree(signal.name);
  release_list(signal.attrs);
  release_list(signal.mux_ranges);
}

void release_members(msgblk& message) {
  release_list(message.siggroups);
  release_list(message.signals);
  release_list(message.tx_nodes);
  zelk_mfree(message.comment);
  zelk_mfree(message.name);
  release_list(message.attrs);
}

void release_members(symblk& node) {
  zelk_mfree(node.comment);
  zelk_mfree(node.name);
  release_list(node.attrs);
}

void release_members(env_var_blk& variable) {
  zelk_mfree(variable.comment);
  zelk_mfree(variable.name);
  release_list(variable.attrs);
  release_list(variable.access_nodes);
  release_list(variable.values);
}

void release_members(valtable& table) { release_list(table.values); }

void release_members(sigtype& type) {
  zelk_mfree(type.comment);
  release_list(type.attrs);
}

void release_members(attr_def& definition) {
  if (definition.value_type == ZELK_ATTR_ENUM) zelk_mfree(definition.enum_values);
  if (has_text_default(definition)) zelk_mfree(definition.default_value.text);
}

/// Releases a list whose records have members to release.
template <typename Record>
void release_with_members(Record* list) {
  release_each(list, [](Record& record) { release_members(record); });
}

/// Releases a list whose records own nothing.
template <typename Record>
void release_plain(Record* list) {
  release_each(list, [](Record&) {});
}

}  // namespace

void release_list(attr* list) { release_with_members(list); }
void release_list(val* list) { release_with_members(list); }
void release_list(rxblk* list) { release_with_members(list); }
void release_list(catlink* list) { release_plain(list); }
void release_list(muxor_val_range* list) { release_plain(list); }
void release_list(siglistblk* list) { release_plain(list); }
void release_list(siggroup_extra* list) { release_plain(list); }
void release_list(siggroupblk* list) { release_with_members(list); }
void release_list(sigblk* list) { release_with_members(list); }
void release_list(msgblk* list) { release_with_members(list); }
void release_list(symblk* list) { release_with_members(list); }
void release_list(env_var_blk* list) { release_with_members(list); }
void release_list(btlblk* list) { release_plain(list); }
void release_list(cat* list) { release_plain(list); }
void release_list(valtable* list) { release_with_members(list); }
void release_list(sigtype* list) { release_with_members(list); }
void release_list(attr_def* list) { release_with_members(list); }

void release(const ModelHeads& model) {
  count_list_changes<symblk, msgblk, env_var_blk, btlblk, cat, sigtype, valtable, attr_def>();
  const ModelContent gone = take(model);
  zelk_mfree(gone.comment);
  zelk_mfree(gone.version);
  release_list(gone.net_attrs);
  release_list(gone.bit_timings);
  release_list(gone.env_vars);
  release_list(gone.val_tables);
  release_list(gone.messages);
  release_list(gone.nodes);
  release_list(gone.sig_types);
  release_list(gone.filter.nodes);
  release_list(gone.filter.categories);
  release_list(gone.categories);
  release_list(gone.attr_defs);  // last: attribute values of all others refer to them
}

}  // namespace zelk

extern "C" {

void zelk_free_mode_cache(void) {}

void zelk_free(symblk* nodes, msgblk* messages, env_var_blk* env_vars, btlblk* bit_timings,
               attr_def* attr_defs, attr* db_attrs, cat* categories, filter_t* filter,
               char* comment, char* version, sigtype* sigtypes, valtable* valtables) {
  filter_t no_filter = {};
  zelk::release({nodes, messages, env_vars, bit_timings, attr_defs, db_attrs, categories,
                 filter ? *filter : no_filter, comment, version, sigtypes, valtables});
}

}  // extern "C"
