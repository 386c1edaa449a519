/// \file
/// A database's lists, as the benchmarks hold them.

#ifndef ZELK_BENCH_MODEL_HPP
#define ZELK_BENCH_MODEL_HPP

#include <cstdint>
#include <string>

#include "zelk/zelk.h"

namespace zelk::bench {

struct Model {
  symblk* nodes = nullptr;
  msgblk* messages = nullptr;
  env_var_blk* env_vars = nullptr;
  btlblk* bit_timings = nullptr;
  attr_def* attr_defs = nullptr;
  attr* net_attrs = nullptr;
  cat* categories = nullptr;
  filter_t filter = {};
  char* comment = nullptr;
  char* version = nullptr;
  sigtype* sig_types = nullptr;
  valtable* val_tables = nullptr;

  /// Returns the error number, 0 for success.
  std::uint32_t read(const std::string& path) {
    attr_def* slots[4];
    return zelk_try_read(path.c_str(), &nodes, &messages, &env_vars, &bit_timings, &attr_defs,
                         &net_attrs, &categories, &filter, &comment, &version, &sig_types,
                         &val_tables, slots);
  }

  /// Returns the error number, 0 for success.
  std::uint32_t write(const std::string& path) const {
    return zelk_write(path.c_str(), nodes, messages, env_vars, bit_timings, attr_defs, net_attrs,
                      categories, filter, comment, version, sig_types, val_tables, 1);
  }

  void free() {
    zelk_free(nodes, messages, env_vars, bit_timings, attr_defs, net_attrs, categories, &filter,
              comment, version, sig_types, val_tables);
    *this = {};
  }
};

}  // namespace zelk::bench

#endif
