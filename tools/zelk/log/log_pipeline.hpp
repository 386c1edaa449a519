/// \file
/// A whole log, decoded by several threads.

#ifndef ZELK_TOOL_LOG_LOG_PIPELINE_HPP
#define ZELK_TOOL_LOG_LOG_PIPELINE_HPP

#include <cstdint>
#include <exception>
#include <mutex>
#include <vector>

#include "log/block_turns.hpp"
#include "log/frame_catalog.hpp"
#include "log/log_decoder.hpp"
#include "log/log_reports.hpp"
#include "log/time_window.hpp"
#include "term/output.hpp"
#include "term/progress.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/logs/transport.hpp"

namespace zelk::tool {

/// Each thread takes the next block of the log, decodes it, and waits until all blocks before it
/// have been written: the output does not depend on the number of threads, and no more blocks than
/// threads are in memory. Between parsing and decoding, messages of the J1939 transport protocol
/// are put together, where that is wanted, also in the order of the blocks: they reach over
/// several.
class LogPipeline {
 public:
  /// All must outlive the object.
  ///
  /// @param transport  null: messages of the transport protocol are not put together
  LogPipeline(const FrameCatalog& catalog, const TimeOptions& times, ZelkLogReader& reader,
              Output& out, LogReport& report, ZelkTransport* transport = nullptr)
      : catalog_(catalog),
        window_(times),
        reader_(reader),
        out_(out),
        report_(report),
        transport_(transport),
        progress_(reader.SizeBytes().value_or(0)) {}

  /// Decodes the log to its end.
  ///
  /// @param threads  at least 1
  /// @throws ZelkLogError when the log cannot be read, RequestError when it is not as the user
  /// wants it, std::system_error when the output cannot be written
  void run(unsigned threads);

  /// The unknown identifiers of the log, once it is decoded.
  const UnknownIds& unknown() const { return unknown_; }

 private:
  void work();
  void decode_blocks();
  bool take(ZelkLogChunk& chunk);
  bool begin_window(const ZelkLogBlock& block);
  bool assemble(ZelkLogBlock& block);
  bool put(const ZelkLogBlock& block, const DecodedBlock& decoded);

  const FrameCatalog& catalog_;
  TimeWindow window_;  // constant once it has begun
  ZelkLogReader& reader_;
  Output& out_;
  LogReport& report_;
  ZelkTransport* transport_;
  ProgressBar progress_;

  std::mutex input_mutex_;  // held by the thread that reads
  BlockTurns window_turns_;
  BlockTurns transport_turns_;
  BlockTurns output_turns_;
  std::mutex result_mutex_;  // guards the following
  UnknownIds unknown_;
  std::exception_ptr fault_;
};

}  // namespace zelk::tool

#endif
