/// \file
/// Writing a file in place, where it has several names (hard links) that shall stay names of one
/// file.
///
/// No single step does that. So a whole copy of the new content stands beside the target, on the
/// disk, from before the target is emptied until all of it is on the disk again; the copy has the
/// target's time of the last change before that. Its writer holds it: on POSIX systems by a lock,
/// on Windows open. A copy that nobody holds shows that a write did not end. Nobody has changed the
/// target since when it still has that time (not yet emptied), or its content begins the copy's; a
/// disk that lost its power may have kept zeros in place of some bytes.
///
/// Until the write has ended, by its writer or by the next save, the copy is what a reader gets: a
/// part may look like a file of its own, and must not be saved as one.

#ifndef ZELK_FILES_IN_PLACE_HPP
#define ZELK_FILES_IN_PLACE_HPP

#include <filesystem>
#include <string>

#include "files/save_failure.hpp"

namespace zelk::files {

/// Text of a failure: another process holds the target or the copy.
inline constexpr const char* kBusy = "another save is writing to it";

/// How far a write came: `kUnknown` when somebody has changed the target since.
enum class Progress { kPart, kAll, kUnknown };

/// Removes a file, if the system does it. For each system its own.
void remove_copy(const std::filesystem::path& copy);

/// Overwrites the target with the content of `copy`, by `write`, and removes the copy, which stays
/// after a SaveFailure.
template <typename Write>
void overwrite(const std::filesystem::path& copy, Write write) {
  try {
    write();
  } catch (const SaveFailure& failure) {
    throw SaveFailure(std::string(failure.what()) + "; its whole content is in " +
                      copy.filename().string());
  }
  remove_copy(copy);
}

/// Ends a write that did not end, with `overwrite` when it came to a part.
///
/// @return whether that was so
template <typename Write>
bool end_write(Progress progress, const std::filesystem::path& copy, Write write) {
  if (progress == Progress::kUnknown) {
    throw SaveFailure("it was changed after a write that did not end; " + copy.filename().string() +
                      " has what was to be written: keep one, and remove that");
  }
  const bool is_part = progress == Progress::kPart;
  is_part ? overwrite(copy, write) : remove_copy(copy);
  return is_part;
}

}  // namespace zelk::files

#endif
