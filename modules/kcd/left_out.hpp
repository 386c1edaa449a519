/// \file
/// Counts of what the other format cannot hold.

#ifndef ZELK_MODULES_KCD_LEFT_OUT_HPP
#define ZELK_MODULES_KCD_LEFT_OUT_HPP

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace zelk::modules::kcd {

class LeftOut {
 public:
  /// @param kind   in the singular, with a plural in "s"; equal ones are counted together
  /// @param where  stands behind the kind, with a blank in front
  void add(const std::string& kind, const std::string& where = "", std::uint64_t count = 1);

  /// Reports each kind in a note of its own: "left out: 3 VAR elements in Node".
  void note() const;

 private:
  std::map<std::pair<std::string, std::string>, std::uint64_t> counts_;  ///< by `where` and `kind`
};

}  // namespace zelk::modules::kcd

#endif
