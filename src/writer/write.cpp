#include <new>
#include <utility>

#include "model/errors.hpp"
#include "writer/writer.hpp"
#include "zelk/dbc.h"

namespace zelk {

std::string_view Writer::name(const symblk* node) { return node ? name(*node) : ZELK_NO_NODE; }

std::string_view Writer::transmitter(const msgblk& message) {
  const symblk* node = message.transmitter;
  return node && node->name ? name(*node) : ZELK_NO_NODE;
}

std::string_view Writer::name(const symblk& node) {
  return names_[NamedKind::kNode].written_name(&node, node.name);
}

std::string_view Writer::name(const msgblk& message) {
  return names_[NamedKind::kMessage].written_name(&message, message.name);
}

std::string_view Writer::name(const sigblk& signal) {
  return signal.name ? names_[NamedKind::kSignal].written_name(&signal, signal.name) : ZELK_NO_NODE;
}

std::string_view Writer::name(const env_var_blk& variable) {
  return names_[NamedKind::kVariable].written_name(&variable, variable.name);
}

namespace {

std::uint32_t write_file(const char* path, const ModelView& model, bool with_multiplexor_ranges) {
  ShortNameCache& names = short_name_cache();
  names.reset(model);
  platform::File file = path ? platform::open_for_writing(path) : nullptr;
  if (!file) return ZELK_ERR_WRITE;
  TextOutput out(std::move(file));
  Writer(model, names, out).write(with_multiplexor_ranges);
  return ZELK_OK;
}

}  // namespace
}  // namespace zelk

extern "C" {

uint32_t zelk_write(const char* path, symblk* nodes, msgblk* messages, env_var_blk* env_vars,
                    btlblk* bit_timings, attr_def* attr_defs, attr* db_attrs, cat* categories,
                    filter_t filter, const char* comment, const char* version, sigtype* sigtypes,
                    valtable* valtables, uint8_t write_mul_val) {
  const zelk::ModelView model = {nodes,      messages, env_vars, bit_timings, attr_defs, db_attrs,
                                 categories, filter,   comment,  version,     sigtypes,  valtables};
  try {
    return zelk::write_file(path, model, write_mul_val != 0);
  } catch (const std::bad_alloc&) {
    zelk_report(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr, 1);
    return ZELK_ERR_MEMORY;
  }
}

}  // extern "C"
