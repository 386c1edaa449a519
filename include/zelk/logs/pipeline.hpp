/// \file
/// A whole log, decoded by several threads.

#ifndef ZELK_LOGS_PIPELINE_HPP
#define ZELK_LOGS_PIPELINE_HPP

#include <functional>
#include <memory>
#include <string_view>

#include "zelk/export.h"
#include "zelk/logs/columns.hpp"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/logs/texts.hpp"
#include "zelk/logs/time_window.hpp"
#include "zelk/logs/transport.hpp"

/// The work of one thread on the blocks of a log. Each thread has a worker of its own, which no
/// other thread uses.
class ZELK_LOGS_API ZelkLogWorker {
 public:
  ZelkLogWorker() = default;
  ZelkLogWorker(const ZelkLogWorker&) = delete;
  ZelkLogWorker& operator=(const ZelkLogWorker&) = delete;
  virtual ~ZelkLogWorker();

  /// Works on a block; all workers may at once. What they share must not change meanwhile, or has
  /// to be guarded.
  ///
  /// @param counts  is empty; what became of the frames may be added
  virtual void Decode(const ZelkLogBlock& block, ZelkFrameCounts& counts) = 0;
  /// Hands on what `Decode` made of the same block. One worker at a time, in the order of the
  /// blocks: what they share needs no other guard here.
  virtual void Put(const ZelkLogBlock& block) = 0;
};

struct ZelkPipelineOptions {
  static constexpr unsigned kMostThreads = 256;

  /// Threads to work with, the caller's included; 0: one for a pipe, which is handed on as it
  /// comes, and a small file, else as many as there are cores. At most `kMostThreads`.
  unsigned threads = 0;
  /// The frames that are wanted, and how their times count.
  ZelkTimeOptions times{};
  /// Put messages of the J1939 transport protocol together.
  bool transport = false;
  /// Called for each read, in the thread that reads, one at a time; has to return what `read`
  /// returns. A host that has to interrupt a read that waits knows here which thread to wake.
  std::function<bool(const std::function<bool()>& read)> read{};
  /// Called for each block before it is put, in their order, one thread at a time; the place for
  /// reports of malformed lines. An exception ends the work.
  std::function<void(const ZelkLogBlock& block)> report{};
};

/// What was met in a log, up to where it ended or an exception ended the work.
struct ZelkLogSummary {
  ZelkLogCounts log{};
  ZelkFrameCounts frames{};
  ZelkTransportCounts transport{};
};

/// Takes a log block by block through three steps:
///
///   Take, Parse                one thread reads at a time; all parse at once
///   the first frame's time,    in the order of the blocks, one thread at a time
///   transport protocol
///   window of times, Decode    all threads at once
///   report, Put                in the order of the blocks, one thread at a time
///
/// What is put does not depend on the number of threads, and no more blocks than threads are in
/// memory. Where something throws, all blocks in front of it are still put, and none behind it; the
/// caller gets the exception, the first one in the order of the log.
class ZELK_LOGS_API ZelkLogPipeline {
 public:
  /// @param log  must outlive the object, and is used by nothing else meanwhile
  explicit ZelkLogPipeline(ZelkLogReader& log, ZelkPipelineOptions options = {});
  ZelkLogPipeline(const ZelkLogPipeline&) = delete;
  ZelkLogPipeline& operator=(const ZelkLogPipeline&) = delete;
  ~ZelkLogPipeline();

  /// Takes the log to its end, once. Threads that the system does not give are done without.
  ///
  /// @param make_worker  is called once for each thread, by the calling one
  /// @throws ZelkLogError when the log cannot be read, or a frame has no time and needs one; what
  /// workers and the functions of the options throw
  void Run(const std::function<std::unique_ptr<ZelkLogWorker>()>& make_worker);

  /// After `Run`, also where it threw.
  const ZelkLogSummary& Summary() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Decodes a log into columns.
///
/// @param decoder  nothing else uses it meanwhile
/// @param put      is called each time rows were put into `decoder`, by one thread at a time, but
/// not always the same one: the place to take batches. The rows that are left at the end are taken
/// by the caller, with `is_end`
/// @return what was met
/// @throws as `ZelkLogPipeline::Run`; rows of all blocks in front of the fault were put
ZELK_LOGS_API ZelkLogSummary ZelkDecodeLog(ZelkLogReader& log, ZelkColumnDecoder& decoder,
                                           const ZelkPipelineOptions& options,
                                           const std::function<void()>& put);

/// Decodes a log into lines of text; the heading is not among them.
///
/// @param decoder  is prepared
/// @param write    takes whole lines, in their order, by one thread at a time, but not always the
/// same one
/// @return what was met
/// @throws as `ZelkLogPipeline::Run`; lines of all blocks in front of the fault were written
ZELK_LOGS_API ZelkLogSummary ZelkDecodeLog(ZelkLogReader& log, const ZelkTextDecoder& decoder,
                                           const ZelkPipelineOptions& options,
                                           const std::function<void(std::string_view)>& write);

#endif
