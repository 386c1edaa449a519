/// \file
/// Names announced in a file's "NS_" section that are no keywords. A statement that begins with one
/// is skipped.

#ifndef ZELK_TEXT_NEW_SYMBOLS_HPP
#define ZELK_TEXT_NEW_SYMBOLS_HPP

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/seeded_hash.hpp"

namespace zelk {

/// The names that a file under way has announced. They become the last ones of the thread when the
/// read ends.
class NewSymbols {
 public:
  NewSymbols() = default;
  NewSymbols(const NewSymbols&) = delete;
  NewSymbols& operator=(const NewSymbols&) = delete;
  ~NewSymbols();

  /// Announces `name`, cut to 32 characters; a keyword is accepted and ignored.
  ///
  /// @return false when there is no memory for it
  bool add(std::string_view name);

  bool contains(std::string_view name) const {
    return !announced_.empty() && announced_.contains(name);
  }

 private:
  std::unordered_set<std::string, SeededHash, std::equal_to<>> announced_;
  std::vector<std::string> names_;
};

/// Forgets the names of the file that the calling thread read last.
void reset_new_symbols();

/// The names announced in the file that the calling thread read last, in file order.
const std::vector<std::string>& last_new_symbols();

}  // namespace zelk

#endif
