/// \file
/// Numbers with more digits than a file keeps.

#ifndef ZELK_TOOL_SAVE_ROUNDING_HPP
#define ZELK_TOOL_SAVE_ROUNDING_HPP

#include <string>
#include <vector>

#include "input/encoded_database.hpp"

namespace zelk::tool {

/// A number of a database that a file holds otherwise.
struct Rounding {
  const double* place;  ///< in the records
  double before;
  double after;
  std::string object;  ///< as `list` and `diff` call it: "signal Motion.Speed"
  std::string field;   ///< likewise: "max", "attribute "Cycle""

  bool operator==(const Rounding& other) const {
    return place == other.place && before == other.before;
  }
};

/// All numbers that change when the database is written: those of more than 14 digits.
std::vector<Rounding> roundings_of(EncodedDatabase database);

/// Prints each on standard error, as a fault of the file `path`, or as a warning.
///
/// @throws RequestError when there are any and they are not allowed
void check_roundings(const std::vector<Rounding>& roundings, const std::string& path,
                     bool are_allowed);

}  // namespace zelk::tool

#endif
