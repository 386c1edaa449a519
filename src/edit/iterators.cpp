// Iterators over signals that may be changed.

#include "zelk/iterator.hpp"

#include "zelk/predicates.hpp"
#include "zelk/write_manager.hpp"

ZelkIterator<sigblk> ZelkWriteManager::GetValidSignalIterator(
    msgblk& message, ValidSignalPredicate& predicate) const {
  return {*this, message.signals, predicate, nullptr};
}
ZelkIterator<sigblk> ZelkWriteManager::GetValidMultiplexorSignalIterator(
    msgblk& message, ValidMultiplexorPredicate& predicate) const {
  return {*this, message.signals, predicate, nullptr};
}
ZelkIterator<sigblk> ZelkWriteManager::GetMultiplexedSignalIterator(
    msgblk& message, MultiplexedBySignalPredicate& predicate) const {
  return {*this, message.signals, predicate, nullptr};
}
ZelkIterator<sigblk> ZelkWriteManager::GetMultiplexorSignalIterator(msgblk& message) const {
  static MultiplexorPredicate is_multiplexor;  // one for all iterators: it has no state
  return {*this, message.signals, is_multiplexor, nullptr};
}
