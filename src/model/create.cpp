#include "model/errors.hpp"
#include "model/memory.hpp"
#include "zelk/model.h"

namespace zelk {
namespace {

/// For the records of the core statements: an exhausted heap is reported once per read, then
/// silent. All others report it always (`create_record`).
template <typename Record>
Record* create_reporting_once() {
  void* block = zelk_malloc(sizeof(Record));
  if (!block) zelk_read_error(ZELK_ERR_MEMORY, kNoLine, nullptr);
  return static_cast<Record*>(block);
}

rxblk* create_link(symblk* node) {
  auto* link = create_reporting_once<rxblk>();
  if (link) link->node = node;
  return link;
}

}  // namespace
}  // namespace zelk

using zelk::create_link;
using zelk::create_record;
using zelk::create_reporting_once;

val* zelk_create_value() { return create_reporting_once<val>(); }

extern "C" {

msgblk* zelk_create_msgblk(void) {
  auto* message = create_reporting_once<msgblk>();
  if (!message) return nullptr;
  message->dlc = 1;
  message->signal_count = 1;
  return message;
}

sigblk* zelk_create_sigblk(void) {
  auto* signal = create_reporting_once<sigblk>();
  if (!signal) return nullptr;
  signal->length = 1;
  signal->factor = 1.0;
  return signal;
}

btlblk* zelk_create_btlblk(void) { return create_reporting_once<btlblk>(); }

symblk* zelk_create_symbol(void) { return create_reporting_once<symblk>(); }

rxblk* zelk_create_rx(symblk* node) { return create_link(node); }

rxblk* zelk_create_tx(symblk* node) { return create_link(node); }

muxor_val_range* zelk_create_muxor_value_range(void) {
  return create_reporting_once<muxor_val_range>();
}

env_var_blk* zelk_create_evblk(void) { return create_reporting_once<env_var_blk>(); }

attr_def* zelk_create_attr_def(void) { return create_record<attr_def>(); }

cat* zelk_create_category(void) { return create_record<cat>(); }

valtable* zelk_create_valtable(void) { return create_record<valtable>(); }

sigtype* zelk_create_sigtype(void) { return create_record<sigtype>(); }

siggroupblk* zelk_create_siggroup(msgblk* message) {
  auto* group = create_record<siggroupblk>();
  group->repetitions = 1;
  group->message = message;
  return group;
}

siglistblk* zelk_create_siglist(sigblk* signal) {
  auto* entry = create_record<siglistblk>();
  entry->signal = signal;
  return entry;
}

}  // extern "C"
