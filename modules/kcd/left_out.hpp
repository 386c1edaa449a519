/// \file
/// What the other format has no place for, counted.

#ifndef ZELK_MODULES_KCD_LEFT_OUT_HPP
#define ZELK_MODULES_KCD_LEFT_OUT_HPP

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace zelk::modules::kcd {

class LeftOut {
 public:
  /// @param kind   in the singular, of a word that takes an "s"; counted together with its like
  /// @param where  stands behind it, with a blank in front
  void add(const std::string& kind, const std::string& where = "", std::uint64_t count = 1);

  /// Tells the host, in one note for each kind: "left out: 3 VAR elements in Node".
  void note() const;

 private:
  std::map<std::pair<std::string, std::string>, std::uint64_t> counts_;  ///< by `where` and `kind`
};

}  // namespace zelk::modules::kcd

#endif
