// Runs over logs, as Python sees them.

#include <nanobind/stl/shared_ptr.h>

#include <algorithm>
#include <new>

#include "frame_run.hpp"
#include "log_run.hpp"

namespace zelk::python {
namespace {

ZelkLogTimes times_of(std::string_view name) {
  if (name == "detect") return ZelkLogTimes::kDetect;
  if (name == "points") return ZelkLogTimes::kPoints;
  if (name == "differences") return ZelkLogTimes::kDifferences;
  throw Failure(FailureKind::kArgument,
                "times must be 'detect', 'points' or 'differences', not " + shown(name));
}

std::optional<ZelkTimePoint> time_of(nb::handle text, const char* what) {
  if (text.is_none()) return std::nullopt;
  const std::optional<ZelkTimePoint> point = ZelkParseTimePoint(text_from_python(text));
  if (!point) {
    throw Failure(FailureKind::kArgument,
                  std::string(what) + " must be a time, not " + shown(text) +
                      ": seconds, '+12.5' from the first frame, or '2015-07-10T06:17:32Z'");
  }
  return point;
}

void construct(LogRun* self, std::shared_ptr<Decoding> decoding, const nb::list& paths,
               nb::handle start, nb::handle stop, const nb::str& times, bool relative,
               bool j1939_tp, bool strict, bool keeps_going, unsigned threads, nb::handle part) {
  LogRunOptions options;
  options.log.times = times_of(text_from_python(times));
  if (!part.is_none()) {
    options.log.range = {nb::cast<std::uint64_t>(part[0]), nb::cast<std::uint64_t>(part[1])};
  }
  options.pipeline.times = {time_of(start, "start"), time_of(stop, "stop"), relative};
  options.pipeline.transport = j1939_tp;
  options.pipeline.threads = threads;
  options.strict = strict;
  options.keeps_going = keeps_going;
  std::vector<std::string> all;
  for (const nb::handle path : paths) all.push_back(path_from_python(path));
  new (self) LogRun(std::move(decoding), std::move(all), std::move(options));
}

bool is_divisible(nb::handle path, const nb::str& times) {
  const std::string log = path_from_python(path);
  const ZelkLogTimes kind = times_of(text_from_python(times));
  try {
    const nb::gil_scoped_release unlocked;
    ZelkLogOptions options;
    options.times = kind;
    return ZelkLogReader(log, options).IsDivisible();
  } catch (const ZelkLogError& error) {
    throw Failure(FailureKind::kRead, error.what());
  }
}

nb::object take(LogRun& run, double patience) {
  std::optional<LogRun::Batch> batch;
  {
    const nb::gil_scoped_release unlocked;
    batch = run.take(std::chrono::milliseconds(static_cast<int>(patience * 1000)));
  }
  if (!batch) return nb::none();
  return nb::make_tuple(batch->table,
                        TableRows(run.decoding().heads()[batch->table], {std::move(batch->rows)}));
}

nb::tuple progress(const LogRun& run) {
  const LogRun::Progress at = run.progress();
  return nb::make_tuple(at.path, at.read, at.size ? nb::object(nb::int_(*at.size)) : nb::none());
}

/// Index of the log, and what is wrong with it; none for memory that has run out.
nb::tuple fault_to_python(const LogFault& fault) {
  try {
    std::rethrow_exception(fault.cause);
  } catch (const std::bad_alloc&) {
    return nb::make_tuple(fault.path, nb::none());
  } catch (const std::exception& error) {
    return nb::make_tuple(fault.path, text_to_python(error.what()));
  }
}

void add_frames(nb::dict& result, const ZelkFrameCounts& frames) {
  result["outside"] = frames.outside;
  result["decoded"] = frames.decoded;
  result["unknown"] = frames.unknown;
  result["packets"] = frames.packets;
  result["remote"] = frames.remote;
  result["errors"] = frames.errors;
  result["too_short"] = frames.too_short;
  nb::dict ids;
  std::vector<std::pair<std::uint32_t, std::uint64_t>> sorted(frames.unknown_ids.begin(),
                                                              frames.unknown_ids.end());
  std::ranges::sort(sorted);
  for (const auto& [id, count] : sorted) ids[nb::int_(id)] = count;
  result["unknown_ids"] = ids;
}

nb::dict transport_to_python(const ZelkTransportCounts& counts) {
  nb::dict result;
  result["complete"] = counts.complete;
  result["aborted"] = counts.aborted;
  result["incomplete"] = counts.incomplete;
  result["inconsistent"] = counts.inconsistent;
  result["dropped"] = counts.dropped;
  result["stray"] = counts.stray;
  return result;
}

nb::tuple report(const LogRun& run) {
  const LogRun::Report& met = run.report();
  nb::dict counts;
  counts["lines"] = met.lines.lines;
  counts["frames"] = met.lines.frames;
  counts["malformed"] = met.lines.malformed;
  add_frames(counts, met.frames);
  counts["transport"] = transport_to_python(met.transport);
  nb::list malformed;
  for (const MalformedLine& each : met.malformed)
    malformed.append(nb::make_tuple(each.path, each.line.number, text_to_python(each.line.text)));
  nb::list faults;
  for (const LogFault& fault : met.faults) faults.append(fault_to_python(fault));
  return nb::make_tuple(counts, malformed, faults);
}

}  // namespace

nb::dict counts_to_python(const ZelkFrameCounts& frames, std::uint64_t all,
                          const ZelkTransportCounts& transport) {
  nb::dict result;
  result["lines"] = result["frames"] = all;
  result["malformed"] = 0;
  add_frames(result, frames);
  result["transport"] = transport_to_python(transport);
  return result;
}

void bind_log(nb::module_& module) {
  module.def("note_fork", &LogRun::note_fork, "To be called in the child of a fork.");
  module.def("is_divisible", is_divisible, nb::arg("path"), nb::arg("times"),
             nb::sig("def is_divisible(path: str, times: str) -> bool"),
             "Whether parts of a log can be read each alone.");
  nb::class_<LogRun>(module, "LogRun", "Logs on their way into tables.")
      .def("__init__", construct, nb::arg("decoding"), nb::arg("paths"), nb::arg("start").none(),
           nb::arg("stop").none(), nb::arg("times"), nb::arg("relative"), nb::arg("j1939_tp"),
           nb::arg("strict"), nb::arg("keeps_going"), nb::arg("threads"), nb::arg("part").none(),
           nb::sig("def __init__(self, decoding: Decoding, paths: list[str], start: str | None, "
                   "stop: str | None, times: str, relative: bool, j1939_tp: bool, strict: bool, "
                   "keeps_going: bool, threads: int, part: tuple[int, int] | None) -> None"))
      .def("take", take, nb::arg("patience"),
           nb::sig("def take(self, patience: float) -> tuple[int, TableRows] | None"),
           "The next batch; None when the seconds are over, or the run.")
      .def("has_ended", &LogRun::has_ended)
      .def("progress", progress, nb::sig("def progress(self) -> tuple[int, int, int | None]"))
      .def("report", report,
           nb::sig("def report(self) -> tuple[dict[str, typing.Any], list[tuple[int, int, str]], "
                   "list[tuple[int, str | None]]]"))
      .def("close", &LogRun::close);
}

}  // namespace zelk::python
