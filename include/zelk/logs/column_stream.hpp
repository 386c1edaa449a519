/// \file
/// One table as a stream of batches, read from a log as they are asked for.

#ifndef ZELK_LOGS_COLUMN_STREAM_HPP
#define ZELK_LOGS_COLUMN_STREAM_HPP

#include <cstddef>
#include <functional>
#include <memory>

#include "zelk/export.h"
#include "zelk/logs/arrow.h"
#include "zelk/logs/columns.hpp"
#include "zelk/logs/frame.hpp"

/// Reads blocks of frames, and gives the rows of one table in batches. No other table is decoded,
/// and no more than `batch_rows` rows and those of one block are kept.
///
/// One thread at a time.
class ZELK_LOGS_API ZelkColumnStream {
 public:
  /// Fills a block with the frames that come next. Returns false when there are no more; the block
  /// does not count then. It may throw: the rows read so far are given, and then the exception.
  using ReadBlock = std::function<bool(ZelkFrameBlock&)>;

  /// @param decoder  may be gone, but its databases not, while the stream is used. Its own rows are
  /// not touched
  /// @param table    index in its `Tables`
  /// @throws std::out_of_range for no such table
  ZelkColumnStream(ZelkColumnDecoder& decoder, std::size_t table, ReadBlock read);
  ZelkColumnStream(ZelkColumnStream&&) noexcept;
  ZelkColumnStream& operator=(ZelkColumnStream&&) noexcept;
  ~ZelkColumnStream();

  /// See `ZelkColumnDecoder::GetSchema`.
  void GetSchema(ArrowSchema* out) const;
  /// The next batch: of `batch_rows` rows, or fewer for `kept_bytes`, but for the last one.
  ///
  /// @param out  receives it, unless the result is false; whoever has it releases it
  /// @return false at the end
  /// @throws what reading throws
  bool Next(ArrowArray* out);

  /// Gives the stream to the Arrow C stream interface, and leaves none here. An exception becomes
  /// the error code EIO with its text, and std::bad_alloc ENOMEM.
  ///
  /// @param out  receives the stream; whoever has it releases it, and what `read` holds with it
  void Export(ArrowArrayStream* out) &&;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
