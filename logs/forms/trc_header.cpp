#include "logs/forms/trc_header.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "base/numbers.hpp"

// Grammar of the head. A line of its own for each, with ";" in front; other lines with ";" are
// comments.
//
//   ;$FILEVERSION=1.1
//   ;$STARTTIME=40477.6364318287    days since 1899-12-30 00:00
//   ;$COLUMNS=N,O,T,B,I,d,R,L,D     versions from 2.0 on

namespace zelk::logs {

namespace {

constexpr std::string_view kDirectiveMark = ";$";

constexpr TrcVersion kVersions[] = {
    {"1.0", "NOIlD"},    {"1.1", "NOtIlD"},  {"1.2", "NOBtIlD"},
    {"1.3", "NOBtIRlD"}, {"2.0", "NOTIdlD"}, {"2.1", "NOTBIdRLD"},
};

std::string refused(std::string_view line, const char* why) {
  constexpr std::size_t kShownBytes = 60;
  return '"' + std::string(line.substr(0, kShownBytes)) + "\" " + why;
}

std::string read_version(std::string_view line, std::string_view value, TrcHeader& header) {
  const auto* const version = std::ranges::find(kVersions, value, &TrcVersion::name);
  if (version == std::end(kVersions))
    return refused(line, "is no known version, 1.0 to 1.3, 2.0 or 2.1");
  header = {.columns = std::string(version->columns), .has_columns = true};
  return {};
}

/// Nanoseconds since 1970, to the microsecond: what ten decimals of a day tell is coarser.
std::optional<std::int64_t> start_of(double days) {
  constexpr double kDaysUntil1970 = 25569;
  constexpr double kMostDays = 92500;  // 253 years: what a trace adds is in range, too
  constexpr double kMicrosecondsPerDay = 86'400e6;
  if (!(days >= 0 && days - kDaysUntil1970 <= kMostDays)) return std::nullopt;
  // A clock that has not been set is no start.
  if (days < kDaysUntil1970) return 0;
  const double whole = std::floor(days);
  const auto of_day = std::llround((days - whole) * kMicrosecondsPerDay);
  const auto of_days = static_cast<std::int64_t>(whole - kDaysUntil1970) *
                       static_cast<std::int64_t>(kMicrosecondsPerDay);
  return (of_days + of_day) * 1000;
}

std::string read_start(std::string_view line, std::string_view value, TrcHeader& header) {
  const auto days = parse_whole<double>(value, std::chars_format::fixed);
  const auto start = days ? start_of(*days) : std::nullopt;
  if (!start) return refused(line, "is no number of days since 1899-12-30");
  header.start = *start;
  return {};
}

std::string read_columns(std::string_view line, std::string_view value, TrcHeader& header) {
  constexpr std::string_view kLetters = "NOTBIdRlLD";
  std::string columns;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool is_letter = i % 2 == 0 && kLetters.find(value[i]) != std::string_view::npos &&
                           columns.find(value[i]) == std::string::npos;
    if (is_letter) columns += value[i];
    if (!is_letter && (i % 2 == 0 || value[i] != ','))
      return refused(line, "has an unknown column");
  }
  const bool has_length = columns.find_first_of("lL") != std::string::npos;
  if (columns.find('I') == std::string::npos || !has_length || !columns.ends_with('D'))
    return refused(line, "lacks the columns of identifier, length and, at its end, data");
  header.columns = std::move(columns);
  header.has_columns = true;
  return {};
}

std::string_view without_blanks(std::string_view text) {
  const std::size_t end = text.find_last_not_of(" \t\r");
  text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
  return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

}  // namespace

std::span<const TrcVersion> trc_versions() { return kVersions; }

bool is_trc_directive(std::string_view line) { return line.starts_with(kDirectiveMark); }

std::string read_trc_directive(std::string_view line, TrcHeader& header) {
  line = without_blanks(line);
  const std::size_t mark = line.find('=');
  if (mark == std::string_view::npos) return {};
  const std::string_view key = without_blanks(line.substr(kDirectiveMark.size(), mark - 2));
  const std::string_view value = without_blanks(line.substr(mark + 1));
  if (key == "FILEVERSION") return read_version(line, value, header);
  if (key == "STARTTIME") return read_start(line, value, header);
  if (key == "COLUMNS") return read_columns(line, value, header);
  return {};
}

}  // namespace zelk::logs
