#include "log/log_run.hpp"

#include "term/system.hpp"

namespace zelk::tool {

LogRun::LogRun(ZelkLogReader& log, const ZelkPipelineOptions& options, bool strict, bool has_lines)
    : log_(log),
      options_(options),
      report_(log.Name(), strict),
      progress_(log.SizeBytes().value_or(0), has_lines) {
  options_.read = read_until_stop;
  options_.report = [this](const ZelkLogBlock& block) {
    if (!block.malformed.empty()) progress_.clear();
    report_.add(block);
  };
}

void LogRun::run_workers(const std::function<std::unique_ptr<ZelkLogWorker>()>& make_worker) {
  ZelkLogPipeline pipeline(log_, options_);
  pipeline.Run(make_worker);
  summary_ = pipeline.Summary();
  progress_.clear();
}

bool LogRun::has_results() const { return report_.is_of_a_log() || NotedStop::is_requested(); }

bool LogRun::finish(bool stats) {
  report_.print_rest();
  if (stats) print_summary(summary_, options_);
  return report_.is_of_a_log();
}

}  // namespace zelk::tool
