#include "log/log_probe.hpp"

#include <fmt/format.h>

#include "input/lookup.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::tool {

std::optional<std::string> why_no_log(const std::string& path) {
  if (file_type(path) != std::filesystem::file_type::regular)
    return "not a regular file; what comes from elsewhere is read from standard input";
  ZelkLogBlock block;
  ZelkLogReader(path).Next(block);
  if (block.counts.frames > 0) return std::nullopt;
  std::string first;
  if (!block.malformed.empty()) {
    const ZelkMalformedLine& line = block.malformed.front();
    first = fmt::format(", line {}: {}", line.number, in_quotes(line.text));
  }
  return "no frame at its beginning" + first;
}

void check_is_not_output(const std::optional<std::string>& path) {
  const auto identity = path ? identity_of(*path) : identity_of_input();
  if (!identity || identity != identity_of_output()) return;
  throw RequestError((path ? escaped(*path) : "standard input") +
                     " is both the log to read and the output");
}

void check_is_no_input(const std::string& output, const std::vector<std::string>& inputs) {
  const auto identity = identity_of(output);
  for (const std::string& input : inputs) {
    if (!identity || identity_of(input) != identity) continue;
    throw RequestError(escaped(input) + " is both read and the output");
  }
}

}  // namespace zelk::tool
