#include "json/references.hpp"

namespace zelk::modules::json {

void check_circles(const Path& path, const sigblk* signals) {
  std::unordered_map<const sigblk*, const sigblk*> seen;  // and from where
  for (const sigblk& start : each(signals)) {
    const sigblk* signal = start.mux_signal ? &start : nullptr;
    while (signal && seen.emplace(signal, &start).second) signal = signal->mux_signal;
    if (!signal || seen[signal] != &start) continue;
    path.fail("the multiplexor of the signal \"" + std::string(view(signal->name)) +
              "\" depends on that signal");
  }
}

}  // namespace zelk::modules::json
