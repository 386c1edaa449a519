#include "reader/reader.hpp"

#include <new>
#include <utility>

#include "model/errors.hpp"
#include "text/new_symbols.hpp"
#include "text/token_codes.hpp"
#include "zelk/dbc.h"
#include "zelk/exception.hpp"

namespace zelk {

int Reader::run() { return zelk_parse(*this); }

void Reader::accept() {
  attributes.accept();
  messages.check_multiplexing();
}

namespace {

/// Memory that runs out is an error like any other.
///
/// @param open  makes the source
template <typename Open>
std::uint32_t read_by(const ReadTarget& target, Open open) {
  try {
    return static_cast<std::uint32_t>(Reader(target, open()).run());
  } catch (const ZelkException&) {
    error_state().read_error_reported = true;  // also when memory for a text ran out
    throw;
  } catch (const std::bad_alloc&) {
    zelk_read_error(ZELK_ERR_MEMORY, kNoLine, nullptr);
    return ZELK_ERR_MEMORY;
  }
}

void begin_read(const ReadTarget& target) {
  reset_new_symbols();
  if (!target.version) target.version = copy_text("").release();
  error_state().read_error_reported = false;
}

}  // namespace

std::uint32_t read_file(const char* file_name, const ReadTarget& target) {
  begin_read(target);
  if (!file_name) return ZELK_OK;
  return read_by(target, [file_name] {
    files::File file = files::open_for_reading(file_name);
    if (!file) zelk_report(ZELK_ERR_NOT_FOUND, kNoLine, file_name, 1);
    return ByteSource(std::move(file));
  });
}

std::uint32_t read_text(std::string_view text, const ReadTarget& target) {
  begin_read(target);
  if (!text.data()) return ZELK_OK;
  return read_by(target, [text] { return ByteSource(text); });
}

}  // namespace zelk

extern "C" {

uint32_t zelk_read(const char* file_name, symblk** nodes, msgblk** messages, env_var_blk** env_vars,
                   btlblk** bit_timings, attr_def** attr_defs, attr** net_attrs, cat** categories,
                   filter_t* filter, char** db_comment, char** version, sigtype** sig_types,
                   valtable** val_tables, attr_def* slots[4]) {
  return zelk::read_file(
      file_name, {{*nodes, *messages, *env_vars, *bit_timings, *attr_defs, *net_attrs, *categories,
                   *filter, *db_comment, *version, *sig_types, *val_tables},
                  slots});
}

uint32_t zelk_try_read(const char* file_name, symblk** nodes, msgblk** messages,
                       env_var_blk** env_vars, btlblk** bit_timings, attr_def** attr_defs,
                       attr** net_attrs, cat** categories, filter_t* filter, char** db_comment,
                       char** version, sigtype** sig_types, valtable** val_tables,
                       attr_def* slots[4]) {
  try {
    return zelk_read(file_name, nodes, messages, env_vars, bit_timings, attr_defs, net_attrs,
                     categories, filter, db_comment, version, sig_types, val_tables, slots);
  } catch (const ZelkException&) {
    return zelk::error_state().last_number;
  }
}

uint32_t zelk_try_read_text(const char* text, size_t size, symblk** nodes, msgblk** messages,
                            env_var_blk** env_vars, btlblk** bit_timings, attr_def** attr_defs,
                            attr** net_attrs, cat** categories, filter_t* filter, char** db_comment,
                            char** version, sigtype** sig_types, valtable** val_tables,
                            attr_def* slots[4]) {
  try {
    return zelk::read_text({text, text ? size : 0},
                           {{*nodes, *messages, *env_vars, *bit_timings, *attr_defs, *net_attrs,
                             *categories, *filter, *db_comment, *version, *sig_types, *val_tables},
                            slots});
  } catch (const ZelkException&) {
    return zelk::error_state().last_number;
  }
}

}  // extern "C"
