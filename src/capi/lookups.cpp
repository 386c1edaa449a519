#include <string_view>

#include "base/list.hpp"
#include "model/inline_name.hpp"
#include "zelk/query.h"

extern "C" {

msgblk* zelk_get_message(msgblk* messages, uint32_t id) {
  return zelk::find_first(messages, [id](const msgblk& message) { return message.id == id; });
}

msgblk* zelk_get_message_name(msgblk* messages, const char* name) {
  return zelk::find_name(messages, name);
}

msgblk* zelk_get_message_n(msgblk* messages, int32_t n) { return zelk::find_nth(messages, n); }

sigblk* zelk_get_signal(msgblk* messages, uint32_t id, const char* name) {
  return zelk_get_signal_of_msg_name(zelk_get_message(messages, id), name);
}

// Hosts rely on getting null here also for a signal that exists: they then ask the message itself.
sigblk* zelk_get_signal_n(msgblk* /*messages*/, uint32_t /*id*/, int32_t /*n*/) { return nullptr; }

sigblk* zelk_get_signal_of_msg_n(msgblk* message, int32_t n) {
  return message != nullptr ? zelk::find_nth(message->signals, n) : nullptr;
}

sigblk* zelk_get_signal_of_msg_name(msgblk* message, const char* name) {
  return message != nullptr ? zelk::find_name(message->signals, name) : nullptr;
}

double zelk_get_sig_factor(const sigblk* signal) {
  return signal != nullptr ? signal->factor : 0.0;
}

double zelk_get_sig_offset(const sigblk* signal) {
  return signal != nullptr ? signal->offset : 0.0;
}

btlblk* zelk_get_btlblk(btlblk* bit_timings, uint32_t number) {
  return zelk::find_first(bit_timings,
                          [number](const btlblk& timing) { return timing.baudrate == number; });
}

env_var_blk* zelk_get_evblk_name(env_var_blk* env_vars, const char* name) {
  return zelk::find_name(env_vars, name);
}

env_var_blk* zelk_get_evblk_h(env_var_blk* env_vars, uint32_t handle) {
  return zelk::find_first(env_vars,
                          [handle](const env_var_blk& variable) { return variable.id == handle; });
}

env_var_blk* zelk_get_evblk_n(env_var_blk* env_vars, int32_t n) {
  return zelk::find_nth(env_vars, n);
}

symblk* zelk_get_symbol_name(symblk* nodes, const char* name) {
  return zelk::find_name(nodes, name);
}

symblk* zelk_get_symbol_n(symblk* nodes, int32_t n) { return zelk::find_nth(nodes, n); }

cat* zelk_get_category(cat* categories, int32_t number) {
  return zelk::find_first(categories,
                          [number](const cat& category) { return category.number == number; });
}

sigtype* zelk_get_sigtype_name(sigtype* sigtypes, const char* name) {
  return zelk::find_inline_name(sigtypes, name);
}

valtable* zelk_get_valtable_name(valtable* valtables, const char* name) {
  return zelk::find_inline_name(valtables, name);
}

uint32_t zelk_get_file_comment(const char* comment, char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return 0;
  const std::string_view text = comment != nullptr ? comment : "";
  const auto length = static_cast<uint32_t>(text.copy(buffer, size - 1));
  buffer[length] = '\0';
  return length;
}

}  // extern "C"
