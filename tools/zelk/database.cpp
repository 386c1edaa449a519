#include "database.hpp"

#include "text.hpp"

namespace zelk::tool {

Database::~Database() {
  zelk_free(nodes, messages, env_vars, bit_timings, attr_defs, attrs, categories, &filter, comment,
            version, sig_types, val_tables);
}

bool Database::read(const std::string& path) {
  attr_def* slots[4] = {};
  zelk_clear_error_text();
  zelk_reset_symbols_shortened();
  return zelk_try_read(path.c_str(), &nodes, &messages, &env_vars, &bit_timings, &attr_defs, &attrs,
                       &categories, &filter, &comment, &version, &sig_types, &val_tables,
                       slots) == ZELK_OK;
}

bool Database::write(const std::string& path) const {
  return zelk_write(path.c_str(), nodes, messages, env_vars, bit_timings, attr_defs, attrs,
                    categories, filter, comment, version, sig_types, val_tables, 1) == ZELK_OK;
}

std::vector<std::string> report_lines() { return escaped_lines(view(zelk_get_error_text())); }

std::string behind_path(const std::string& path, const std::string& line) {
  // A syntax error has no text of its own: its line begins with the comma in front of "line N".
  const char* separator = line.starts_with(", ") ? "" : ": ";
  return escaped(path) + separator + line;
}

}  // namespace zelk::tool
