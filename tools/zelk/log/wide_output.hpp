/// \file
/// Logs decoded into wide tables.

#ifndef ZELK_TOOL_LOG_WIDE_OUTPUT_HPP
#define ZELK_TOOL_LOG_WIDE_OUTPUT_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "log/log_run.hpp"
#include "term/output.hpp"
#include "zelk/logs/wide.hpp"

namespace zelk::tool {

struct WideArguments {
  bool is_wanted = false;
  ZelkWideOptions options{};
  std::string path = kStandardStream;  ///< folder or file
  std::int64_t step = 0;               ///< of the grid, in nanoseconds; 0: a row for each frame
};

/// "100ms", "0.5s": a time above 0 with its unit, ns, us, ms, s or min.
///
/// @return nanoseconds; none for other texts
std::optional<std::int64_t> parse_step(std::string_view text);

/// Whether tables go into a folder: the path ends like one, or leads to one.
bool is_folder(const std::string& path);

/// Writes a file for each message.
///
/// @throws RequestError when they cannot be written, and as `LogRun::run`, as both
void decode_into_folder(const ZelkWideChoice& choice, const WideArguments& arguments, LogRun& run);

/// Writes one table of all signals that are chosen.
void decode_into_timeline(const ZelkWideChoice& choice, const WideArguments& arguments, LogRun& run,
                          Output& out);

}  // namespace zelk::tool

#endif
