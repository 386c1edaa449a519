#include "commands/time_options.hpp"

#include <string>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kDifferences = "differences";

std::string check_time_point(const std::string& text) {
  return ZelkParseTimePoint(text) ? ""
                                  : "seconds, +SECONDS or a date such as 2015-07-10T06:17:32Z are "
                                    "wanted, not " +
                                        in_quotes(text);
}

void add_time_point(CLI::App& command, const std::string& name, std::optional<ZelkTimePoint>& point,
                    const std::string& description) {
  command
      .add_option_function<std::string>(
          name, [&point](const std::string& text) { point = ZelkParseTimePoint(text); },
          description)
      ->type_name("TIME")
      ->check(CLI::Validator(check_time_point, ""));
}

}  // namespace

void add_time_options(CLI::App& command, TimeOptions& options) {
  add_time_point(command, "--start", options.window.start,
                 "Only frames from this time on: seconds as the log counts them, mostly since\n"
                 "1970, +SECONDS from the first frame, or a date such as 2015-07-10T06:17:32Z,\n"
                 "in UTC unless it has a zone");
  add_time_point(command, "--stop", options.window.stop,
                 "Only frames in front of this time; likewise");
  command.add_flag("--relative", options.window.relative,
                   "Times count from the first frame of the log");
  command
      .add_option_function<std::string>(
          "--times",
          [&options](const std::string& kind) {
            options.kind =
                kind == kDifferences ? ZelkLogTimes::kDifferences : ZelkLogTimes::kPoints;
          },
          "What the times of a log of candump are: points, or differences to the frame\n"
          "before; else its first lines tell")
      ->type_name("KIND")
      ->check(CLI::IsMember({"points", kDifferences}).description(""));
}

}  // namespace zelk::tool
