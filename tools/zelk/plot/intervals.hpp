/// \file
/// The times between the frames of a signal, and what is a gap among them.

#ifndef ZELK_TOOL_PLOT_INTERVALS_HPP
#define ZELK_TOOL_PLOT_INTERVALS_HPP

#include <array>
#include <cstddef>
#include <cstdint>

namespace zelk::tool {

/// Counts intervals by their size, to an eighth of an octave, whatever their number.
class Intervals {
 public:
  /// An interval of more usual ones than this is a gap.
  static constexpr std::int64_t kGapCycles = 5;

  /// @param nanoseconds  negative ones count as 0
  void add(std::int64_t nanoseconds);
  Intervals& operator+=(const Intervals& other);

  /// What three quarters of the intervals do not exceed, in nanoseconds; 0 for none. Frames that
  /// come in short bursts have the time between bursts as usual one, and no gaps there.
  std::int64_t usual() const;

  /// Whether an interval may turn out to be a gap once all are known.
  bool may_be_gap(std::int64_t nanoseconds) const { return nanoseconds / 2 > usual_so_far_; }

 private:
  static constexpr unsigned kStepBits = 3;  // of the parts of an octave
  static constexpr std::size_t kClasses = 64 << kStepBits;

  static std::size_t class_of(std::uint64_t size);
  static std::int64_t largest_of(std::size_t size_class);

  std::array<std::uint64_t, kClasses> counts_{};
  std::uint64_t count_ = 0;
  std::uint64_t next_look_ = 1;  // number of intervals at which `usual_so_far_` is found anew
  std::int64_t usual_so_far_ = 0;
};

}  // namespace zelk::tool

#endif
