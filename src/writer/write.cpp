#include "writer/write.hpp"

#include <new>
#include <string>
#include <string_view>
#include <system_error>

#include "files/files.hpp"
#include "model/errors.hpp"
#include "writer/read_back.hpp"
#include "writer/writer.hpp"
#include "zelk/dbc.h"
#include "zelk/exception.hpp"

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

/// @return the first error of the stream; 0 when it took everything
int write_model(std::FILE* file, const ModelView& model, ShortNameCache& names,
                bool with_multiplexor_ranges) {
  TextOutput out(file);
  Writer(model, names, out).write(with_multiplexor_ranges);
  out.flush();
  return out.error();
}

std::uint32_t write_file(const char* path, const ModelView& model, bool with_multiplexor_ranges) {
  ShortNameCache names(model);
  const files::File file = path ? files::open_for_writing(path) : nullptr;
  if (!file) return ZELK_ERR_WRITE;
  write_model(file.get(), model, names, with_multiplexor_ranges);
  return ZELK_OK;
}

/// Adds a line about the file to the error text. A path that would leave no room for the reason is
/// cut to its end.
void note(std::string_view path, const std::string& reason) {
  constexpr std::size_t kPathMax = ZELK_ERROR_LINE_SIZE - 400;
  const bool is_cut = path.size() > kPathMax;
  std::string text = is_cut ? "..." : "";
  text.append(path.substr(is_cut ? path.size() - kPathMax : 0)).append(": ").append(reason);
  zelk_note(ZELK_ERR_WRITE, kNoLine, text.c_str());
}

}  // namespace

bool save(const char* path, const ModelView& model, bool with_multiplexor_ranges) {
  if (const auto fault = read_back_fault(model)) {
    zelk_note(ZELK_ERR_FORMAT, kNoLine, fault->c_str());
    return false;
  }
  ShortNameCache names(model);
  files::Replacement file(path);
  if (!file.notice().empty()) note(path, file.notice());
  const int error =
      file.file() ? write_model(file.file(), model, names, with_multiplexor_ranges) : 0;
  if (error != 0) {
    note(path, std::generic_category().message(error));
  } else if (file.file() && file.take_place()) {
    return true;
  } else {
    note(path, file.failure());
  }
  return false;
}

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

uint32_t zelk_try_write(const char* path, symblk* nodes, msgblk* messages, env_var_blk* env_vars,
                        btlblk* bit_timings, attr_def* attr_defs, attr* db_attrs, cat* categories,
                        filter_t filter, const char* comment, const char* version,
                        sigtype* sigtypes, valtable* valtables, uint8_t write_mul_val) {
  try {
    return zelk_write(path, nodes, messages, env_vars, bit_timings, attr_defs, db_attrs, categories,
                      filter, comment, version, sigtypes, valtables, write_mul_val);
  } catch (const ZelkException&) {  // raised for nothing else
    return ZELK_ERR_MEMORY;
  }
}

}  // extern "C"
