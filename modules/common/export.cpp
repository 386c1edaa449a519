#include "common/call.hpp"

namespace zelk::modules {
namespace {

/// For `Database`, which serves both directions: an export changes nothing.
template <typename Record>
Record*& unlocked(const Record*& head) {
  return const_cast<Record*&>(head);
}

}  // namespace
}  // namespace zelk::modules

extern "C" ZELK_MODULE_EXPORT int zelk_export(const char* file, const msgblk* messages,
                                              const symblk* nodes, const env_var_blk* env_vars,
                                              const attr_def* attr_defs, const attr* attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERT, [&] {
    run(export_file, file, unlocked(messages), unlocked(nodes), unlocked(env_vars),
        unlocked(attr_defs), unlocked(attr_values));
  });
}
