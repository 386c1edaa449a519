/// \file
/// Names that are told apart by a number: engines that take tables refuse equal ones.

#ifndef ZELK_LOGS_LOOKUP_UNIQUE_NAMES_HPP
#define ZELK_LOGS_LOOKUP_UNIQUE_NAMES_HPP

#include <string>
#include <unordered_map>

#include "base/seeded_hash.hpp"

namespace zelk::logs {

class UniqueNames {
 public:
  /// The name itself the first time, then the first of "NAME_2", "NAME_3", ... that is free.
  std::string unique(const std::string& name) {
    std::string result = name;
    int& last = taken_[name];
    while (last++ > 0) {
      result = name + "_" + std::to_string(last);
      if (taken_.try_emplace(result, 1).second) break;
    }
    return result;
  }

 private:
  std::unordered_map<std::string, int, SeededHash> taken_;  ///< with the last number
};

}  // namespace zelk::logs

#endif
