#include "log/log_reports.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "term/output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/records.h"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostIds = 5;

/// "0x7DF (12), 0x18FF1100 (3), ..."
std::string most_frequent(const UnknownIds& unknown) {
  std::vector<std::pair<std::uint32_t, std::uint64_t>> ids(unknown.begin(), unknown.end());
  std::ranges::sort(ids, [](const auto& a, const auto& b) {
    return a.second != b.second ? a.second > b.second : a.first < b.first;
  });
  std::string text;
  for (std::size_t i = 0; i < std::min(ids.size(), kMostIds); ++i) {
    const auto [id, count] = ids[i];
    const int digits = id & ZELK_ID_EXTENDED ? 8 : 3;
    text += fmt::format("{}0x{:0{}X} ({})", i ? ", " : "", id & ~ZELK_ID_EXTENDED, digits, count);
  }
  return ids.size() > kMostIds ? text + ", ..." : text;
}

}  // namespace

void LogReport::add(const DecodedBlock& block) {
  std::uint64_t told = std::min<std::uint64_t>(counts_.malformed, LogDecoder::kMostMalformed);
  for (const MalformedLine& line : block.malformed) {
    if (told++ >= LogDecoder::kMostMalformed) break;
    print_error(fmt::format("{}, line {}: not a frame: {}", escaped(log_name_),
                            counts_.lines + line.number + 1, in_quotes(line.text)));
  }
  counts_ += block.counts;
}

void LogReport::tell_rest() const {
  if (counts_.malformed > LogDecoder::kMostMalformed) {
    print_error(fmt::format("{}: {} in all that are not frames", escaped(log_name_),
                            counted(counts_.malformed, "line")));
  }
  if (!is_of_a_log())
    print_error(fmt::format("{}: not a log: no line is a frame", escaped(log_name_)));
}

void LogReport::tell_counts(const UnknownIds& unknown) const {
  const auto tell = [](std::string_view what, std::uint64_t count, const std::string& more = "") {
    print_error(fmt::format("{:<16} {}{}", what, count, more));
  };
  tell("lines", counts_.lines);
  tell("frames", counts_.frames);
  tell("  decoded", counts_.decoded);
  tell("    too short", counts_.too_short);
  tell("  unknown", counts_.unknown,
       unknown.empty() ? ""
                       : fmt::format(", of {}: {}", counted(unknown.size(), "identifier"),
                                     most_frequent(unknown)));
  tell("  remote", counts_.remote);
  tell("  error", counts_.errors);
  tell("malformed lines", counts_.malformed);
}

ProgressBar::ProgressBar(const LogInput& input)
    : input_(input),
      is_wanted_(input.size().value_or(0) > 0 && is_terminal(stderr) && !is_terminal(stdout)),
      next_(Clock::now()) {}

void ProgressBar::update() {
  constexpr auto kInterval = std::chrono::milliseconds(100);
  constexpr std::uint64_t kWidth = 40;
  if (!is_wanted_ || Clock::now() < next_) return;
  next_ = Clock::now() + kInterval;
  const double part =
      std::min(1.0, static_cast<double>(input_.bytes_read()) / static_cast<double>(*input_.size()));
  const auto filled = static_cast<std::size_t>(part * static_cast<double>(kWidth));
  fmt::print(stderr, "\r[{:<{}}] {:3.0f} %", std::string(filled, '#'), kWidth, part * 100);
  std::fflush(stderr);
  is_drawn_ = true;
}

void ProgressBar::clear() {
  if (is_drawn_) fmt::print(stderr, "\r{:50}\r", "");
  is_drawn_ = false;
}

}  // namespace zelk::tool
