#include "log/log_probe.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "log/candump_log.hpp"
#include "log/file_type.hpp"
#include "log/log_input.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kProbedLines = 100;
constexpr std::size_t kShownBytes = 60;

}  // namespace

std::optional<std::string> why_no_log(const std::string& path) {
  if (file_type(path) != std::filesystem::file_type::regular)
    return "not a regular file, which only --log itself takes";
  std::string block;
  LogInput(path).next(block);
  std::string first;
  std::string_view rest = block;
  LogFrame frame;
  for (std::size_t line = 1; line <= kProbedLines && !rest.empty(); ++line) {
    const std::size_t length = std::min(rest.find('\n'), rest.size());
    const LogLine kind = parse_log_line(rest.substr(0, length), frame);
    if (kind != LogLine::kBlank && kind != LogLine::kMalformed) return std::nullopt;
    if (kind == LogLine::kMalformed && first.empty()) {
      first = fmt::format(", line {}: {}", line,
                          in_quotes(rest.substr(0, std::min(length, kShownBytes))));
    }
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return fmt::format("no frame among the first {} lines{}", kProbedLines, first);
}

}  // namespace zelk::tool
