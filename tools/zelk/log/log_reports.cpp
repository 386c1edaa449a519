#include "log/log_reports.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "input/lookup.hpp"
#include "term/output.hpp"
#include "term/text.hpp"
#include "words/record_words.hpp"

namespace zelk::tool {

void print_count(std::string_view what, std::uint64_t count, std::string_view more) {
  print_error(fmt::format("{:<16} {}{}", what, count, more));
}

namespace {

constexpr std::size_t kMostIds = 5;
constexpr std::size_t kMostMalformed = ZelkLogBlock::kMostMalformed;

/// "0x7DF (12), 0x18FF1100 (3), ..."
std::string most_frequent(const decltype(ZelkFrameCounts::unknown_ids)& unknown) {
  std::vector<std::pair<std::uint32_t, std::uint64_t>> ids(unknown.begin(), unknown.end());
  std::ranges::sort(ids, [](const auto& a, const auto& b) {
    return a.second != b.second ? a.second > b.second : a.first < b.first;
  });
  std::string text;
  for (std::size_t i = 0; i < std::min(ids.size(), kMostIds); ++i) {
    const auto [id, count] = ids[i];
    text += fmt::format("{}{} ({})", i ? ", " : "", padded_id(id), count);
  }
  return ids.size() > kMostIds ? text + ", ..." : text;
}

void print_transport(const ZelkTransportCounts& counts) {
  print_count("long messages", counts.Messages());
  print_count("  put together", counts.complete);
  print_count("  aborted", counts.aborted);
  print_count("  incomplete", counts.incomplete);
  print_count("  inconsistent", counts.inconsistent);
  print_count("  dropped", counts.dropped);
  print_count("stray packets", counts.stray);
}

}  // namespace

void LogReport::add(const ZelkLogBlock& block) {
  std::uint64_t printed = std::min<std::uint64_t>(counts_.malformed, kMostMalformed);
  for (const ZelkMalformedLine& line : block.malformed) {
    if (printed++ >= kMostMalformed) break;
    print_error(fmt::format("{}, line {}: not a frame: {}", escaped(log_name_), line.number,
                            in_quotes(line.text)));
  }
  counts_ += block.counts;
  if (is_strict_ && block.counts.malformed > 0) {
    throw RequestError(
        fmt::format("{}: --strict takes no line that is not a frame", escaped(log_name_)));
  }
}

void LogReport::print_rest() const {
  if (counts_.malformed > kMostMalformed) {
    print_error(fmt::format("{}: {} in all that are not frames", escaped(log_name_),
                            counted(counts_.malformed, "line")));
  }
  if (!is_of_a_log())
    print_error(fmt::format("{}: not a log: no line is a frame", escaped(log_name_)));
}

void print_summary(const ZelkLogSummary& summary, const ZelkPipelineOptions& options) {
  const ZelkFrameCounts& frames = summary.frames;
  const auto& ids = frames.unknown_ids;
  print_count("lines", summary.log.lines);
  print_count("frames", summary.log.frames);
  if (ZelkTimeWindow(options.times).Cuts()) print_count("  other times", frames.outside);
  print_count("  decoded", frames.decoded);
  print_count("    too short", frames.too_short);
  print_count("  unknown", frames.unknown,
              ids.empty() ? ""
                          : fmt::format(", of {}: {}", counted(ids.size(), "identifier"),
                                        most_frequent(ids)));
  if (options.transport) print_count("  packets", frames.packets);
  print_count("  remote", frames.remote);
  print_count("  error", frames.errors);
  print_count("malformed lines", summary.log.malformed);
  if (options.transport) print_transport(summary.transport);
}

}  // namespace zelk::tool
