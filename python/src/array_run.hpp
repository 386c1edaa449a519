/// \file
/// Frames in arrays, on their way into tables.

#ifndef ZELK_PYTHON_ARRAY_RUN_HPP
#define ZELK_PYTHON_ARRAY_RUN_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "decoding.hpp"
#include "logs/pipeline/block_turns.hpp"
#include "whole_batches.hpp"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/transport.hpp"

namespace zelk::python {

/// Frames as one array for each of their properties, which all have as many values. An empty one
/// stands for what its comment says.
struct FrameArrays {
  std::span<const std::uint32_t> ids;
  std::span<const std::uint16_t> lengths;  ///< may have one value, for all frames
  std::span<const std::int64_t> offsets;   ///< where data begins; empty: every `stride` bytes
  std::size_t stride;
  std::span<const unsigned char> data;
  std::span<const std::int64_t> times;      ///< empty: none
  std::span<const std::uint16_t> channels;  ///< indices of `names`; empty: the first of them
  std::vector<std::string> names;

  std::size_t length(std::size_t frame) const { return lengths[lengths.size() == 1 ? 0 : frame]; }
  std::uint64_t offset(std::size_t frame) const {
    return offsets.empty() ? std::uint64_t{frame} * stride
                           : static_cast<std::uint64_t>(offsets[frame]);
  }
  /// Whether frames differ in identifier, time and data alone.
  bool have_one_layout() const {
    return lengths.size() == 1 && offsets.empty() && channels.empty();
  }

  /// @throws Failure for arrays of different lengths, data beyond its end, channels without a name
  void check() const;
};

struct ArrayRunOptions {
  bool transport;    ///< messages of the J1939 transport protocol are put together, by one thread
  unsigned threads;  ///< 0: as many as there are cores, when there are enough frames for them
  bool is_whole;     ///< tables have few large batches rather than those of the decoding
};

/// Decodes blocks of frames, each in one thread and small enough for its caches, and appends their
/// rows in the order of the blocks: the result does not depend on the number of threads.
class ArrayRun {
 public:
  /// @param frames  were checked; what they show must outlive the object, unchanged
  ArrayRun(std::shared_ptr<Decoding> decoding, const FrameArrays& frames, ArrayRunOptions options);

  bool has_ended() const { return begin_ == frames_.ids.size(); }
  /// Decodes as many frames as should pass between two looks at signals. Needs nothing of Python.
  void decode_part();
  /// All rows, and what became of the frames.
  nb::tuple finish();

 private:
  /// What one thread has.
  struct Worker {
    ZelkFrameBlock block;
    ZelkColumnRows rows;
    std::vector<WholeBatches::Copying> copying;
  };
  /// Frames that all threads work on.
  struct Part;

  void work(Worker& worker, Part& part);
  void fill(ZelkFrameBlock& block, std::size_t first, std::size_t count) const;
  void put(Worker& worker);
  void take_batches(bool is_end, std::vector<WholeBatches::Copying>& copying);
  std::size_t expected_rows(const WholeBatches& table, std::size_t next) const;

  std::shared_ptr<Decoding> decoding_;
  const FrameArrays& frames_;
  ArrayRunOptions options_;
  std::size_t begin_ = 0;  ///< of what was not decoded yet
  std::size_t put_ = 0;    ///< frames whose rows were put
  std::optional<ZelkTransport> transport_;
  std::vector<Worker> workers_;
  ZelkFrameCounts counts_;
  std::vector<WholeBatches> tables_;
};

}  // namespace zelk::python

#endif
