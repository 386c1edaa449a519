/// \file
/// One run over a log: its reports, progress and end.

#ifndef ZELK_TOOL_LOG_LOG_RUN_HPP
#define ZELK_TOOL_LOG_LOG_RUN_HPP

#include <functional>
#include <memory>
#include <string>

#include "log/log_reports.hpp"
#include "term/progress.hpp"
#include "zelk/logs/pipeline.hpp"

namespace zelk::tool {

class LogRun {
 public:
  /// @param log        must outlive the object
  /// @param options    without its functions
  /// @param strict     malformed lines are an error
  /// @param has_lines  whether results appear on the terminal meanwhile
  LogRun(ZelkLogReader& log, const ZelkPipelineOptions& options, bool strict,
         bool has_lines = is_terminal(stdout));
  LogRun(const LogRun&) = delete;
  LogRun& operator=(const LogRun&) = delete;

  /// Takes the log to its end, or to the signal that ends it.
  ///
  /// @param put  is called with what a worker made of a block, in the order of the blocks
  template <typename Made, typename Decoder, typename PutBlock>
  void run(const Decoder& decoder, const PutBlock& put) {
    run_workers([this, &decoder, &put] {
      return std::make_unique<Worker<Made, Decoder, PutBlock>>(*this, decoder, put);
    });
  }

  /// Whether results may take their places: the log is one, or was interrupted.
  bool has_results() const;
  /// What was met so far.
  const ZelkLogSummary& summary() const { return summary_; }
  /// Prints what is left to say.
  ///
  /// @param stats  also the counts
  /// @return whether the log is one
  bool finish(bool stats);

 private:
  template <typename Made, typename Decoder, typename PutBlock>
  class Worker : public ZelkLogWorker {
   public:
    Worker(LogRun& run, const Decoder& decoder, const PutBlock& put)
        : run_(run), decoder_(decoder), put_(put) {}

    void Decode(const ZelkLogBlock& block, ZelkFrameCounts& counts) override {
      decoder_.Decode(block.frames, made_);
      counts += made_.Counts();
    }
    void Put(const ZelkLogBlock&) override {
      put_(made_);
      run_.progress_.update(run_.log_.BytesRead());
    }

   private:
    LogRun& run_;
    const Decoder& decoder_;
    const PutBlock& put_;
    Made made_;
  };

  void run_workers(const std::function<std::unique_ptr<ZelkLogWorker>()>& make_worker);

  ZelkLogReader& log_;
  ZelkPipelineOptions options_;
  LogReport report_;
  ProgressBar progress_;
  ZelkLogSummary summary_;
};

}  // namespace zelk::tool

#endif
