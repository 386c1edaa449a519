#include "log_run.hpp"

#include <algorithm>
#include <new>

#include "base/escaping.hpp"
#include "whole_batches.hpp"

namespace zelk::python {
namespace {

/// Batches that wait to be taken.
constexpr std::size_t kMostWaiting = 16;
/// How long the end of a run may take. Only a read from a pipe that nobody writes to takes longer.
constexpr std::chrono::seconds kPatience{2};

void add(ZelkTransportCounts& sum, const ZelkTransportCounts& counts) {
  sum.complete += counts.complete;
  sum.aborted += counts.aborted;
  sum.incomplete += counts.incomplete;
  sum.inconsistent += counts.inconsistent;
  sum.dropped += counts.dropped;
  sum.stray += counts.stray;
}

}  // namespace

LogRun::LogRun(std::shared_ptr<Decoding> decoding, std::vector<std::string> paths,
               LogRunOptions options)
    : work_(std::make_shared<Work>()) {
  work_->decoding = std::move(decoding);
  work_->paths = std::move(paths);
  work_->options = std::move(options);
  work_->options.log.stop = &work_->stop;
  thread_ = std::thread([work = work_.get()] { work->run(); });
}

void LogRun::close() {
  if (!thread_.joinable()) return;
  std::thread thread = std::move(thread_);  // while this thread of Python is the only one that runs
  if (born_ == forks_) {
    const nb::gil_scoped_release unlocked;
    std::unique_lock lock(work_->mutex);
    work_->stop = true;
    work_->changed.notify_all();
    if (work_->changed.wait_for(lock, kPatience, [&] { return work_->is_done; })) {
      lock.unlock();
      thread.join();
      return;
    }
  }
  // The thread cannot be woken, or has stayed in another process: what it uses is never freed.
  new std::shared_ptr<Work>(work_);
  new std::thread(std::move(thread));
}

void LogRun::check_process() const {
  if (born_ != forks_) {
    throw Failure(FailureKind::kArgument,
                  "the logs are read by the process that this one was forked from");
  }
}

std::optional<LogRun::Batch> LogRun::take(std::chrono::milliseconds patience) {
  check_process();
  std::unique_lock lock(work_->mutex);
  work_->changed.wait_for(lock, patience,
                          [&] { return work_->is_done || !work_->waiting.empty(); });
  if (work_->waiting.empty()) return std::nullopt;
  Batch batch = std::move(work_->waiting.front());
  work_->waiting.pop_front();
  work_->changed.notify_all();
  return batch;
}

bool LogRun::has_ended() const {
  check_process();
  const std::lock_guard lock(work_->mutex);
  return work_->is_done && work_->waiting.empty();
}

LogRun::Progress LogRun::progress() const {
  check_process();
  const std::lock_guard lock(work_->mutex);
  if (!work_->log) return {work_->log_path};
  return {work_->log_path, work_->log->BytesRead(), work_->log->SizeBytes()};
}

/// Decodes blocks into rows of its own, and puts them into the tables.
class LogRun::Work::Worker : public ZelkLogWorker {
 public:
  explicit Worker(Work& work) : work_(work) {}

  void Decode(const ZelkLogBlock& block, ZelkFrameCounts& counts) override {
    work_.decoding->decoder().Decode(block.frames, rows_);
    counts += rows_.Counts();
  }
  void Put(const ZelkLogBlock&) override {
    work_.decoding->decoder().Put(rows_);
    work_.take_batches(false);
  }

 private:
  Work& work_;
  ZelkColumnRows rows_;
};

void LogRun::Work::take_batches(bool is_end) {
  decoding->take_batches(is_end, [this](std::size_t table, ArrowArray rows) {
    return put(table, kept(rows, decoding->heads()[table]));
  });
}

void LogRun::Work::run() {
  for (std::size_t path = 0; path < paths.size() && !stop; ++path) {
    read(path);
    if (!report.faults.empty() && !options.keeps_going) break;
  }
  try {
    take_batches(true);
  } catch (const std::bad_alloc&) {
    keep_fault(paths.size() - 1);
  }
  const std::lock_guard lock(mutex);
  is_done = true;
  changed.notify_all();
}

void LogRun::Work::read(std::size_t path) {
  try {
    ZelkLogReader reader(paths[path], options.log);
    enter(&reader, path);
    decode(path, reader);
    enter(nullptr, path);
  } catch (...) {
    enter(nullptr, path);
    keep_fault(path);
  }
}

void LogRun::Work::decode(std::size_t path, ZelkLogReader& reader) {
  malformed_kept = 0;
  ZelkPipelineOptions pipeline_options = options.pipeline;
  pipeline_options.report = [&](const ZelkLogBlock& block) {
    report_block(path, reader.Name(), block);
  };
  ZelkLogPipeline pipeline(reader, std::move(pipeline_options));
  std::exception_ptr fault;
  try {
    pipeline.Run([this] { return std::make_unique<Worker>(*this); });
  } catch (...) {
    fault = std::current_exception();
  }
  const ZelkLogSummary& met = pipeline.Summary();
  report.lines += met.log;
  report.frames += met.frames;
  add(report.transport, met.transport);
  if (fault) std::rethrow_exception(fault);
  const bool is_whole = !options.log.range && !stop;
  if (met.log.frames == 0 && met.log.malformed > 0 && is_whole)
    throw ZelkLogError(escaped(reader.Name()) + ": not a log: no line is a frame");
}

void LogRun::Work::report_block(std::size_t path, const std::string& name,
                                const ZelkLogBlock& block) {
  for (const ZelkMalformedLine& line : block.malformed) {
    if (malformed_kept++ >= ZelkLogBlock::kMostMalformed) break;
    report.malformed.push_back({path, line});
  }
  if (!options.strict || block.malformed.empty()) return;
  const ZelkMalformedLine& first = block.malformed.front();
  throw ZelkLogError(escaped(name) + ", line " + std::to_string(first.number) +
                     ": not a frame: " + in_quotes(first.text));
}

/// @return false when the run has to end
bool LogRun::Work::put(std::size_t table, SharedArray rows) {
  std::unique_lock lock(mutex);
  changed.wait(lock, [this] { return stop || waiting.size() < kMostWaiting; });
  if (stop) return false;
  waiting.push_back({table, std::move(rows)});
  changed.notify_all();
  return true;
}

void LogRun::Work::keep_fault(std::size_t path) {
  report.faults.push_back({path, std::current_exception()});
}

void LogRun::Work::enter(const ZelkLogReader* reader, std::size_t path) {
  const std::lock_guard lock(mutex);
  log = reader;
  log_path = path;
}

}  // namespace zelk::python
