#include "manager/process_lists.hpp"

namespace zelk {

ProcessLists& process_lists() {
  static auto* const lists = new ProcessLists();
  return *lists;
}

}  // namespace zelk
