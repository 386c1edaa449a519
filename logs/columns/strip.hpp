/// \file
/// Some frames of one message, so few that what is made of them stays in the processor's caches.

#ifndef ZELK_LOGS_COLUMNS_STRIP_HPP
#define ZELK_LOGS_COLUMNS_STRIP_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "logs/columns/column_rows.hpp"
#include "logs/columns/table_plan.hpp"
#include "zelk/logs/frame.hpp"

namespace zelk::logs {

inline constexpr std::size_t kStripRows = 1024;

/// Where the data of the frames lies.
struct StripFrames {
  void load(const ZelkFrameBlock& block, std::span<const std::uint32_t> frames);

  const unsigned char* data = nullptr;
  std::size_t count = 0;
  std::size_t shortest = 0;                ///< length of a frame
  const std::uint32_t* offsets = nullptr;  ///< one for each frame
  const std::uint16_t* lengths = nullptr;  ///< likewise

 private:
  void pick(const ZelkFrameBlock& block, std::span<const std::uint32_t> frames);

  std::array<std::uint32_t, kStripRows> picked_offsets_;
  std::array<std::uint16_t, kStripRows> picked_lengths_;
};

/// Whether no frame of another message stands between those of one.
///
/// @param frames  rising indices, at least one
inline bool are_neighbours(std::span<const std::uint32_t> frames) {
  return frames.back() - frames.front() == frames.size() - 1;
}

/// The words that frames have in one window.
class StripWords {
 public:
  /// Loads the words, unless they are there.
  const std::uint64_t* of(const StripFrames& frames, const Window& window) {
    if (!is_loaded_ || window_ != window) load(frames, window);
    return words_.data();
  }
  void clear() { is_loaded_ = false; }

 private:
  void load(const StripFrames& frames, const Window& window);
  void gather(const StripFrames& frames, std::size_t at);

  bool is_loaded_ = false;
  Window window_;
  std::array<std::uint64_t, kStripRows> words_;
};

/// In which frames something is present.
struct StripBits {
  /// @param flags  1 or 0 for each frame; readable up to `kStripRows`
  void set(const std::uint8_t* flags, std::size_t count);
  /// Leaves what is present in both.
  void intersect(const StripBits& other, std::size_t count);

  std::size_t nulls;                                       ///< frames in which it is not
  std::array<std::uint64_t, kStripRows / kWordBits> bits;  ///< valid unless none or all are null
};

/// Finds the presence of signals.
class StripPresence {
 public:
  /// Gets the memory that `find` needs.
  void prepare(const PresencePlan& plan) {
    bits_.resize(std::max(bits_.size(), plan.presences.size()));
    values_.resize(std::max(values_.size(), plan.multiplexors.size()));
  }
  void find(const StripFrames& frames, StripWords& words, const PresencePlan& plan);
  const StripBits& operator[](std::size_t presence) const { return bits_[presence]; }

 private:
  void find_one(const StripFrames& frames, const PresencePlan& plan, const Presence& presence,
                StripBits& found);
  void select(std::size_t count, const Presence& presence);

  std::vector<StripBits> bits_;                                ///< by presences
  std::vector<std::array<std::uint32_t, kStripRows>> values_;  ///< of multiplexors
  std::array<std::uint8_t, kStripRows> flags_;     ///< for each frame whether it is present
  std::array<std::uint8_t, kStripRows> selected_;  ///< and whether the multiplexor selects it
};

/// Adds values to a column, of which those that are not valid are null.
///
/// @param values  have been written behind the rows of the column; null ones become 0
void add_present(ColumnRows& column, std::size_t count, const StripBits& valid);

}  // namespace zelk::logs

#endif
