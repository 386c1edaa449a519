/// \file
/// Processor time of work in processes of its own.

#ifndef ZELK_BENCH_GROWTH_MEASURING_HPP
#define ZELK_BENCH_GROWTH_MEASURING_HPP

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace zelk::bench {

inline constexpr unsigned kMostSeconds = 20;  ///< of processor time, then the work is ended
inline constexpr double kNoEnd = std::numeric_limits<double>::infinity();

/// Processor seconds of `work` since it called the function that it is given, in a child process;
/// `kNoEnd` when it took too long.
///
/// @throws std::runtime_error when the child ends otherwise
using Start = std::function<void()>;
double seconds_of(const std::function<void(const Start&)>& work);

/// Processor seconds of a program from its start to its end, which may find faults in its input
/// (exit code 1); its output is dropped. `kNoEnd` when it took too long.
///
/// @throws std::runtime_error when it ended otherwise
double seconds_of(const std::vector<std::string>& program);

int process_id();

}  // namespace zelk::bench

#endif
