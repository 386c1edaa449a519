/// \file
/// Mending a file into one that the library reads.

#ifndef ZELK_TOOL_REPAIR_REPAIR_FILE_HPP
#define ZELK_TOOL_REPAIR_REPAIR_FILE_HPP

#include <string>

#include "check/includes/mend.hpp"
#include "findings/options.hpp"
#include "term/output.hpp"

namespace zelk::tool {

struct FileRepair {
  std::string in;
  std::string out;        ///< empty with `in_place`, and maybe with `dry_run`
  bool in_place = false;  ///< `in` itself is replaced
  bool dry_run = false;   ///< nothing is written
  check::MendOptions options{};
  FindingsOptions findings{};

  const std::string& target() const { return in_place ? in : out; }
};

/// Reads one file and writes the other: mended where it must be, else byte for byte the same. What
/// was mended is printed on `out`. Of a file that cannot be mended its faults are printed, and
/// nothing is written.
///
/// @return whether the file is written, or could be
/// @throws RequestError when the one file cannot be read, or the other not written; the path stands
/// in front
bool repair_file(const FileRepair& repair, Output& out);

}  // namespace zelk::tool

#endif
