#include "capi/j1939_message.hpp"

namespace {

/// All messages of a list.
struct MessageList {
  template <typename Visit>
  void visit_addresses(std::uint32_t, Visit visit) const {
    zelk::find_first(messages, visit);
  }
  template <typename Visit>
  void visit_numbers(std::uint32_t, Visit visit) const {
    zelk::find_first(messages, visit);
  }
  bool default_is_j1939_format() const { return zelk::j1939::default_is_j1939_format(definitions); }

  msgblk* messages;
  attr_def* definitions;
};

}  // namespace

extern "C" msgblk* zelk_get_j1939_message(msgblk* messages, attr_def* definitions, uint32_t id,
                                          uint32_t flags) {
  return zelk::j1939::find_message(MessageList{messages, definitions}, id, flags);
}
