#include "log/wide_output.hpp"

#include <array>
#include <cmath>
#include <utility>

#include "base/numbers.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "log/table_folder.hpp"
#include "save/replace_file.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

std::optional<std::int64_t> parse_step(std::string_view text) {
  constexpr double kMost = 9e18;
  constexpr std::array<std::pair<std::string_view, double>, 5> kUnits = {
      {{"ns", 1}, {"us", 1e3}, {"ms", 1e6}, {"min", 60e9}, {"s", 1e9}}};
  for (const auto& [unit, nanoseconds] : kUnits) {
    if (!text.ends_with(unit)) continue;
    const std::optional<double> count = parse_number(text.substr(0, text.size() - unit.size()));
    const double step = std::round(count.value_or(0) * nanoseconds);
    if (!count || !(step >= 1 && step <= kMost)) return std::nullopt;
    return static_cast<std::int64_t>(step);
  }
  return std::nullopt;
}

bool is_folder(const std::string& path) {
  if (path == kStandardStream) return false;
  return path.ends_with('/') || file_type(path + "/.") == std::filesystem::file_type::directory;
}

void decode_into_folder(const ZelkWideChoice& choice, const WideArguments& arguments, LogRun& run) {
  const ZelkWideDecoder decoder(choice, arguments.options);
  TableFolder folder(arguments.path, decoder.Tables());
  run.run<ZelkWideRows>(decoder, [&](const ZelkWideRows& rows) {
    for (std::size_t i = 0; i < rows.Size(); ++i) folder.add(rows.Table(i), rows.Line(i));
  });
  if (!run.has_results()) return;
  const HeldSignals held;
  folder.take_places();
}

namespace {

/// Tells of values that stand in one column, and come from several places.
void report_mixed(const std::vector<std::string>& messages) {
  if (messages.empty()) return;
  std::string names;
  for (const std::string& name : messages) names += (names.empty() ? "" : ", ") + escaped(name);
  print_error(
      fmt::format("zelk: warning: frames of several interfaces share the columns of {}; "
                  "INTERFACE=FILE separates them",
                  names));
}

void write_timeline(const ZelkWideChoice& choice, const WideArguments& arguments, LogRun& run,
                    const std::function<void(std::string_view)>& write) {
  ZelkTimeline timeline(choice, arguments.options, arguments.step, write);
  write(timeline.Heading());
  run.run<ZelkTimelineValues>(timeline,
                              [&](const ZelkTimelineValues& values) { timeline.Put(values); });
  timeline.End();
  report_mixed(timeline.MixedMessages());
}

}  // namespace

void decode_into_timeline(const ZelkWideChoice& choice, const WideArguments& arguments, LogRun& run,
                          Output& out) {
  if (arguments.path == kStandardStream) {
    return write_timeline(choice, arguments, run,
                          [&](std::string_view lines) { out.write_through(lines); });
  }
  const auto about_file = [&](const auto& act) {
    try {
      act();
    } catch (const RequestError& error) {
      throw RequestError(behind_path(arguments.path, error.what()));
    }
  };
  std::optional<ReplacedFile> file;
  about_file([&] { file.emplace(arguments.path); });
  write_timeline(choice, arguments, run,
                 [&](std::string_view lines) { about_file([&] { file->write(lines); }); });
  if (!run.has_results()) return;
  const HeldSignals held;
  about_file([&] { file->take_place(); });
}

}  // namespace zelk::tool
