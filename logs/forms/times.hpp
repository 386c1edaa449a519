/// \file
/// The unit of times; `zelk/logs/times.hpp` reads and spells them.

#ifndef ZELK_LOGS_FORMS_TIMES_HPP
#define ZELK_LOGS_FORMS_TIMES_HPP

#include <cstdint>

namespace zelk::logs {

inline constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

}  // namespace zelk::logs

#endif
