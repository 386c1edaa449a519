/// \file
/// Columns of numbers, made small for the script of a page.
///
/// A packed column is an object in one of these forms; all bytes are in Base64.
///
///   {"f64": BYTES}                      doubles, little-endian
///   {"f32": BYTES}                      floats that are equal to the doubles
///   {"ticks": BYTES, "perSecond": N}    differences of the differences of whole ticks
///   {"codes": BYTES, "table": BYTES}    differences of indices in a table of doubles
///
/// Differences are variable-length integers: seven bits in each byte, the lowest ones first, bit 7
/// set in all bytes but the last; 0, -1, 1, -2, ... are 0, 1, 2, 3, ... The number before the first
/// is 0.

#ifndef ZELK_TOOL_PLOT_PACKING_HPP
#define ZELK_TOOL_PLOT_PACKING_HPP

#include <nlohmann/json.hpp>
#include <vector>

namespace zelk::tool {

/// Times in seconds, to the nanosecond. Times of cyclic frames take two or three bytes each.
nlohmann::json packed_times(const std::vector<double>& seconds);

/// Any doubles, exactly. Values of a signal of up to 16 bits mostly take one or two bytes each.
nlohmann::json packed_values(const std::vector<double>& values);

}  // namespace zelk::tool

#endif
