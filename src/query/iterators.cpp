// Iterators over the objects of databases, and the counts that step them.

#include "zelk/iterator.hpp"

#include "zelk/manager.hpp"
#include "zelk/predicates.hpp"

namespace {

template <typename T>
unsigned count(ZelkIterator<T> iterator) {
  unsigned total = 0;
  for (; iterator; ++iterator) ++total;
  return total;
}

}  // namespace

cat& ZelkNoneFilterCategory() {
  static cat none = {};
  return none;
}

symblk& ZelkNoneFilterNode() {
  static char name[] = ZELK_NO_NODE;
  static symblk none = {name, nullptr, nullptr, nullptr, nullptr};
  return none;
}

// --- Over the objects of databases ---

ZelkIterator<const ZelkManager::DbListNode> ZelkManager::GetDatabaseNameIterator() const {
  return {*this, databases_, nullptr};
}
ZelkIterator<const symblk> ZelkManager::GetNodeIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const symblk>, db};
}
ZelkIterator<const msgblk> ZelkManager::GetMessageIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const msgblk>, db};
}
ZelkIterator<const env_var_blk> ZelkManager::GetEnvvarIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const env_var_blk>, db};
}
ZelkIterator<const btlblk> ZelkManager::GetBitTimingIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const btlblk>, db};
}
ZelkIterator<const attr_def> ZelkManager::GetAttrDefinitionIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const attr_def>, db};
}
ZelkIterator<const cat> ZelkManager::GetCategoryIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const cat>, db};
}
ZelkIterator<const sigtype> ZelkManager::GetSignalTypeIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const sigtype>, db};
}
ZelkIterator<const valtable> ZelkManager::GetValueTableIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const valtable>, db};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const attr>, db};
}
ZelkIterator<const catlink> ZelkManager::GetFilterCategoryIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const catlink>, db};
}
ZelkIterator<const rxblk> ZelkManager::GetFilterNodeIterator(const char* db) const {
  return {*this, &ZelkDatabase::Walk<const rxblk>, db};
}

// --- Over what one object owns ---

ZelkIterator<const sigblk> ZelkManager::GetSignalIterator(const msgblk& message) const {
  return {*this, message.signals, nullptr};
}
ZelkIterator<const siggroupblk> ZelkManager::GetSignalGroupIterator(const msgblk& message) const {
  return {*this, message.siggroups, nullptr};
}
ZelkIterator<const siglistblk> ZelkManager::GetSubsignalIterator(const siggroupblk& group) const {
  return {*this, group.signals, nullptr};
}
ZelkIterator<const rxblk> ZelkManager::GetReceiverIterator(const sigblk& signal) const {
  return {*this, signal.receivers, nullptr};
}
ZelkIterator<const rxblk> ZelkManager::GetTransmitterIterator(const msgblk& message) const {
  return {*this, message.tx_nodes, nullptr};
}
ZelkIterator<const rxblk> ZelkManager::GetAccessNodeIterator(const env_var_blk& variable) const {
  return {*this, variable.access_nodes, nullptr};
}
ZelkIterator<const val> ZelkManager::GetValueDescriptionIterator(const sigblk& signal) const {
  return {*this, signal.values, nullptr};
}
ZelkIterator<const val> ZelkManager::GetValueDescriptionIterator(
    const env_var_blk& variable) const {
  return {*this, variable.values, nullptr};
}
ZelkIterator<const val> ZelkManager::GetValueDescriptionIterator(const valtable& table) const {
  return {*this, table.values, nullptr};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const symblk& node) const {
  return {*this, node.attrs, nullptr};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const msgblk& message) const {
  return {*this, message.attrs, nullptr};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const sigblk& signal) const {
  return {*this, signal.attrs, nullptr};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const env_var_blk& variable) const {
  return {*this, variable.attrs, nullptr};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const sigtype& type) const {
  return {*this, type.attrs, nullptr};
}
ZelkIterator<const attr> ZelkManager::GetAttributeIterator(const rxblk& link) const {
  return {*this, link.attrs, nullptr};
}
ZelkIterator<const sigblk> ZelkManager::GetValidSignalIterator(
    const msgblk& message, ValidSignalPredicate& predicate) const {
  return {*this, message.signals, predicate, nullptr};
}
ZelkIterator<const sigblk> ZelkManager::GetValidMultiplexorSignalIterator(
    const msgblk& message, ValidMultiplexorPredicate& predicate) const {
  return {*this, message.signals, predicate, nullptr};
}
ZelkIterator<const sigblk> ZelkManager::GetMultiplexedSignalIterator(
    const msgblk& message, MultiplexedBySignalPredicate& predicate) const {
  return {*this, message.signals, predicate, nullptr};
}
ZelkIterator<const sigblk> ZelkManager::GetMultiplexorSignalIterator(const msgblk& message) const {
  static MultiplexorPredicate is_multiplexor;  // one for all iterators: it has no state
  return {*this, message.signals, is_multiplexor, nullptr};
}

// --- Counts ---

unsigned ZelkManager::NodeCount(const char* db) const { return count(GetNodeIterator(db)); }
unsigned ZelkManager::MessageCount(const char* db) const { return count(GetMessageIterator(db)); }
unsigned ZelkManager::EnvvarCount(const char* db) const { return count(GetEnvvarIterator(db)); }
unsigned ZelkManager::BitTimingCount(const char* db) const {
  return count(GetBitTimingIterator(db));
}
unsigned ZelkManager::AttrDefinitionCount(const char* db) const {
  return count(GetAttrDefinitionIterator(db));
}
unsigned ZelkManager::CategoryCount(const char* db) const { return count(GetCategoryIterator(db)); }
unsigned ZelkManager::SignalTypeCount(const char* db) const {
  return count(GetSignalTypeIterator(db));
}
unsigned ZelkManager::ValueTableCount(const char* db) const {
  return count(GetValueTableIterator(db));
}
unsigned ZelkManager::AttributeCount(const char* db) const {
  return count(GetAttributeIterator(db));
}
unsigned ZelkManager::AttributeCount(const symblk& node) const {
  return count(GetAttributeIterator(node));
}
unsigned ZelkManager::AttributeCount(const msgblk& message) const {
  return count(GetAttributeIterator(message));
}
unsigned ZelkManager::AttributeCount(const env_var_blk& variable) const {
  return count(GetAttributeIterator(variable));
}
unsigned ZelkManager::AttributeCount(const sigblk& signal) const {
  return count(GetAttributeIterator(signal));
}
unsigned ZelkManager::SignalCount(const msgblk& message) const {
  return count(GetSignalIterator(message));
}
unsigned ZelkManager::SignalGroupCount(const msgblk& message) const {
  return count(GetSignalGroupIterator(message));
}
unsigned ZelkManager::SignalCount(const siggroupblk& group) const {
  return count(GetSubsignalIterator(group));
}
