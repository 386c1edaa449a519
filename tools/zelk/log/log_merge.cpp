#include "log/log_merge.hpp"

#include <algorithm>
#include <span>

#include "term/system.hpp"

namespace zelk::tool {

MergedLog::MergedLog(const std::optional<std::string>& path, std::size_t place, bool reads_ahead,
                     const MergeOptions& options)
    : reader_(path, {.times = options.times, .stop = &NotedStop::is_requested()}),
      place_(place),
      reads_ahead_(reads_ahead && reader_.SizeBytes()),
      report_(reader_.Name(), options.strict) {}

/// Puts the next block into `block_`.
bool MergedLog::read() {
  if (!reads_ahead_) return read_until_stop([this] { return reader_.Next(block_); });
  if (!ahead_.valid()) start_reading_ahead();
  if (!ahead_.get()) return false;
  std::swap(block_, next_block_);
  start_reading_ahead();
  return true;
}

/// Where the system has no thread to give, the block is read when it is wanted.
void MergedLog::start_reading_ahead() {
  ahead_ = std::async(std::launch::async | std::launch::deferred,
                      [this] { return reader_.Next(next_block_); });
}

bool MergedLog::load(ProgressBar& progress) {
  while (is_block_taken()) {
    if (!read()) return false;
    next_ = 0;
    if (!block_.malformed.empty()) progress.clear();
    report_.add(block_);
  }
  return true;
}

std::pair<std::size_t, std::size_t> MergedLog::take(const std::optional<Rank>& limit) {
  const std::size_t begin = next_;
  const std::span<const std::int64_t> times = frames().Times();
  do {
    ran_backwards_ |= times[next_] < last_ && times[next_] != kZelkNoTime;
    last_ = std::max(last_, times[next_++]);
  } while (next_ < times.size() && (!limit || rank() < *limit));
  return {begin, next_};
}

namespace {

LogMerge::Logs open_logs(const std::vector<std::optional<std::string>>& paths,
                         const MergeOptions& options) {
  const unsigned threads =
      options.threads > 0 ? options.threads : ZelkPipelineOptions::kMostThreads;
  LogMerge::Logs logs;
  for (const auto& path : paths) {
    const bool reads_ahead = logs.size() < threads - 1;
    logs.push_back(std::make_unique<MergedLog>(path, logs.size(), reads_ahead, options));
  }
  return logs;
}

/// Bytes of all logs; 0 when one of them is no file.
std::uint64_t size_of(const LogMerge::Logs& logs) {
  std::uint64_t size = 0;
  for (const auto& log : logs) {
    const std::optional<std::uint64_t> bytes = log->reader().SizeBytes();
    if (!bytes) return 0;
    size += *bytes;
  }
  return size;
}

std::uint64_t bytes_read(const LogMerge::Logs& logs) {
  std::uint64_t bytes = 0;
  for (const auto& log : logs) bytes += log->reader().BytesRead();
  return bytes;
}

}  // namespace

LogMerge::LogMerge(const std::vector<std::optional<std::string>>& paths,
                   const MergeOptions& options)
    : logs_(open_logs(paths, options)), progress_(size_of(logs_), options.has_lines) {}

bool LogMerge::next(Run& run) {
  if (current_) enter(*current_);  // more of it may have to be read
  for (; entered_ < logs_.size(); ++entered_) enter(*logs_[entered_]);
  if (heads_.empty() || is_stopped_) {
    progress_.clear();
    return false;
  }
  current_ = logs_[heads_.top().second].get();
  heads_.pop();
  const auto [begin, end] =
      current_->take(heads_.empty() ? std::nullopt : std::optional(heads_.top()));
  run = {current_, begin, end};
  return true;
}

/// Puts a log among those that have frames. A log that was stopped may have had more, which would
/// be missing among the frames of the others.
void LogMerge::enter(MergedLog& log) {
  if (log.is_block_taken()) progress_.update(bytes_read(logs_));
  if (log.load(progress_)) {
    heads_.push(log.rank());
  } else {
    is_stopped_ |= NotedStop::is_requested();
  }
}

}  // namespace zelk::tool
