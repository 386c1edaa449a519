#include "common/call.hpp"

extern "C" ZELK_MODULE_EXPORT int zelk_import(const char* file, msgblk** messages, symblk** nodes,
                                              env_var_blk** env_vars, attr_def** attr_defs,
                                              attr** attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERTED_FORMAT, [=] {
    run(import_file, file, *messages, *nodes, *env_vars, *attr_defs, *attr_values);
  });
}
