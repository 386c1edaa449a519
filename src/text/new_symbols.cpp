#include "text/new_symbols.hpp"

#include <new>
#include <unordered_set>

#include "model/symbols.hpp"
#include "text/keywords.hpp"

namespace zelk {
namespace {

struct NewSymbols {
  std::unordered_set<std::string> announced;
  std::vector<std::string> names;
};

NewSymbols& new_symbols() {
  static NewSymbols symbols;
  return symbols;
}

}  // namespace

bool zelk_add_new_symbol(std::string_view name) try {
  if (find_keyword(name)) return true;
  char symbol[ZELK_INLINE_NAME_MAX + 1];
  copy_inline(symbol, name);
  new_symbols().names.emplace_back(symbol);
  new_symbols().announced.emplace(symbol);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool is_new_symbol(std::string_view name) {
  const auto& announced = new_symbols().announced;
  return !announced.empty() && announced.contains(std::string(name));
}

void zelk_free_new_symbols() { new_symbols().announced.clear(); }

void reset_new_symbols() {
  zelk_free_new_symbols();
  new_symbols().names.clear();
}

const std::vector<std::string>& last_new_symbols() { return new_symbols().names; }

}  // namespace zelk
