#include "json/references.hpp"

#include "base/multiplexing.hpp"

namespace zelk::modules::json {

void check_circles(const Path& path, const sigblk* signals) {
  CircleSearch search;
  for (const sigblk& start : each(signals)) {
    if (const sigblk* const signal = search.circle_above(start)) {
      path.fail("the multiplexor of the signal \"" + std::string(view(signal->name)) +
                "\" depends on that signal");
    }
  }
}

}  // namespace zelk::modules::json
