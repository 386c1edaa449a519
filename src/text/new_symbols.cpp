#include "text/new_symbols.hpp"

#include <functional>
#include <new>
#include <unordered_set>

#include "model/symbols.hpp"
#include "text/keywords.hpp"
#include "text/seeded_hash.hpp"

namespace zelk {
namespace {

struct NewSymbols {
  std::unordered_set<std::string, SeededHash, std::equal_to<>> announced;
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
  if (is_new_symbol(symbol)) return true;
  new_symbols().names.emplace_back(symbol);
  new_symbols().announced.emplace(symbol);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool is_new_symbol(std::string_view name) {
  const auto& announced = new_symbols().announced;
  return !announced.empty() && announced.contains(name);
}

void zelk_free_new_symbols() { new_symbols().announced.clear(); }

void reset_new_symbols() {
  zelk_free_new_symbols();
  new_symbols().names.clear();
}

const std::vector<std::string>& last_new_symbols() { return new_symbols().names; }

}  // namespace zelk
