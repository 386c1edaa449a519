#include "text/new_symbols.hpp"

#include <new>
#include <utility>

#include "model/symbols.hpp"
#include "model/thread_state.hpp"
#include "text/keywords.hpp"

namespace zelk {

NewSymbols::~NewSymbols() {
  ThreadState& thread = thread_state();
  if (!thread.is_shared) thread.announced_names = std::move(names_);
}

bool NewSymbols::add(std::string_view name) try {
  if (find_keyword(name)) return true;
  char symbol[ZELK_INLINE_NAME_MAX + 1];
  copy_inline(symbol, name);
  if (!contains(symbol)) names_.emplace_back(*announced_.emplace(symbol).first);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

void reset_new_symbols() { thread_state().announced_names.clear(); }

const std::vector<std::string>& last_new_symbols() { return thread_state().announced_names; }

}  // namespace zelk
