/// \file
/// What `zelk lint` finds in a file, by the objects that it is about.

#ifndef ZELK_TOOL_REPORT_FILE_FINDINGS_HPP
#define ZELK_TOOL_REPORT_FILE_FINDINGS_HPP

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "check/lint/lint.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// A finding as the page shows it; all texts are in UTF-8.
struct ShownFinding {
  check::Severity severity;
  std::string rule;
  std::string message;
  std::string place;             ///< "12:7"; empty when the file has no such place
  const void* record = nullptr;  ///< message, signal, node or environment variable; null for others
};

struct FileFindings {
  std::string why_none{};                 ///< why the file was not searched; empty when it was
  std::vector<ShownFinding> list{};       ///< the first ones of the text
  std::array<std::uint64_t, 3> counts{};  ///< by severity; those beyond the list included
  std::unordered_map<const void*, std::vector<std::size_t>> by_record{};  ///< indexes in the list
  std::vector<ShownFinding> mends{};  ///< what was done to make the file readable
  std::uint64_t mend_count = 0;
};

/// Applies the rules with the configuration that `zelk lint` would find.
///
/// @param path      of a file that is read already
/// @param database  what was read; the records of the result are its own
/// @param mending   as it was when the file was read
/// @throws RequestError when the configuration is wrong
FileFindings find_in_file(const std::string& path, const ZelkDatabase& database,
                          const Mending& mending);

}  // namespace zelk::tool

#endif
