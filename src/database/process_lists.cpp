#include "database/process_lists.hpp"

#include "platform/immortal.hpp"

namespace zelk {

ProcessLists& process_lists() {
  static Immortal<ProcessLists> lists;
  return lists.get();
}

}  // namespace zelk
