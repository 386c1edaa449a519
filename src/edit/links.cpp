// Links between records, and the view filter.

#include "edit/edits.hpp"
#include "model/memory.hpp"
#include "zelk/model.h"
#include "zelk/write_manager.hpp"

namespace zelk {
namespace {

/// @return false when there is no memory for the link
bool add_link(rxblk*& links, const symblk* node) {
  return without_raising([&] {
    auto* const link = create_record<rxblk>();
    link->node = const_cast<symblk*>(node);
    link_in_front(links, link);
  });
}

/// Releases a link, but not the attribute values that hang on it: they are the caller's.
constexpr auto kReleaseLink = [](rxblk* link) { zelk_mfree(link); };

}  // namespace
}  // namespace zelk

void ZelkWriteManager::AddSignal(siggroupblk& group, const sigblk& signal) {
  zelk::without_raising([&] {
    zelk::link_in_front(group.signals, zelk_create_siglist(const_cast<sigblk*>(&signal)));
  });
}

void ZelkWriteManager::RemoveSignal(siggroupblk& group, const sigblk& signal) {
  zelk::remove_entries(group, signal);
}

void ZelkWriteManager::AddReceiver(sigblk& signal, const symblk& node) {
  if (zelk::add_link(signal.receivers, &node)) ++signal.receiver_count;
}

void ZelkWriteManager::RemoveReceiver(sigblk& signal, const symblk& node) {
  const auto removed = zelk::remove_links(signal.receivers, node, zelk::kReleaseLink);
  zelk::count_off(signal.receiver_count, removed);
}

void ZelkWriteManager::AddTransmitter(msgblk& message, const symblk& node) {
  const bool is_added = zelk::add_link(message.tx_nodes, &node);
  if (is_added && !message.transmitter) message.transmitter = const_cast<symblk*>(&node);
}

void ZelkWriteManager::RemoveTransmitter(msgblk& message, const symblk& node) {
  zelk::remove_transmitter(message, node, zelk::kReleaseLink);
}

void ZelkWriteManager::AddAccessNode(env_var_blk& variable, const symblk& node) {
  if (zelk::add_link(variable.access_nodes, &node)) ++variable.access_node_count;
}

void ZelkWriteManager::AddFilterCategory(const cat& category, const char* db) {
  ZelkDatabase* const database = FindDatabase(db);
  if (!database) return;
  zelk::without_raising([&] {
    auto* const link = zelk::create_record<catlink>();
    const bool is_none = &category == &ZelkNoneFilterCategory();
    link->category = is_none ? nullptr : const_cast<cat*>(&category);
    zelk::link_in_front(database->filter.categories, link);
  });
}

void ZelkWriteManager::RemoveFilterCategory(const cat& category, const char* db) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) zelk::remove_links(database->filter.categories, category);
}

void ZelkWriteManager::AddFilterNode(const symblk& node, const char* db) {
  ZelkDatabase* const database = FindDatabase(db);
  if (!database) return;
  zelk::add_link(database->filter.nodes, &node == &ZelkNoneFilterNode() ? nullptr : &node);
}

void ZelkWriteManager::RemoveFilterNode(const symblk& node, const char* db) {
  ZelkDatabase* const database = FindDatabase(db);
  if (database) zelk::remove_links(database->filter.nodes, node, zelk::kReleaseLink);
}
