#include "codec/j1939.hpp"

#include <array>

namespace {

/// A list of messages as a range of pointers.
class MessageRange {
 public:
  explicit MessageRange(msgblk* head) : head_(head) {}

  class Iterator {
   public:
    explicit Iterator(msgblk* message) : message_(message) {}
    msgblk* operator*() const { return message_; }
    Iterator& operator++() {
      message_ = message_->next;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    msgblk* message_;
  };

  Iterator begin() const { return Iterator(head_); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  msgblk* head_;
};

}  // namespace

extern "C" msgblk* zelk_get_j1939_message(msgblk* messages, attr_def* definitions, uint32_t id,
                                          uint32_t flags) {
  const std::array list = {MessageRange(messages)};
  return zelk::j1939::find_message(
      list, id, flags, [definitions] { return zelk::j1939::default_is_j1939_format(definitions); });
}
