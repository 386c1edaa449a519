/// \file
/// Databases and logs of any size in which one kind of statements or lines prevails.

#ifndef ZELK_BENCH_GROWTH_SHAPES_HPP
#define ZELK_BENCH_GROWTH_SHAPES_HPP

#include <string>
#include <vector>

#include "growth/text.hpp"

namespace zelk::bench {

struct Shape {
  const char* name;
  std::string (*text)(Numbers numbers);
  std::size_t most = std::size_t{1} << 17;  ///< numbers, where there are not more
};

std::vector<Shape> object_shapes();       ///< objects, and what belongs to one object
std::vector<Shape> description_shapes();  ///< what is said about objects: comments, attributes, ...
std::vector<Shape> odd_shapes();          ///< equal, long and colliding names; what nobody knows
std::vector<Shape> log_shapes();          ///< lines of candump

/// Ways to break a database that keep its length.
struct Damage {
  const char* name;
  std::string (*text)(const std::string& database);
};
std::vector<Damage> damages();

}  // namespace zelk::bench

#endif
