/// \file
/// What one system does for a `Replacement` (files.hpp).
///
/// The files that a save makes beside its target stand in the same folder. For a target "a.dbc":
///
///     .a.dbc.zelk-0 to .a.dbc.zelk-31   what is being written; its writer holds it
///     .a.dbc.zelk-whole                 the whole new content of a target that is written in place

#ifndef ZELK_FILES_SAVE_HPP
#define ZELK_FILES_SAVE_HPP

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "files/files.hpp"

namespace zelk::files {

inline constexpr int kMostWriters = 32;  ///< of one target at a time

/// A save under way. Without `take_place` it has no effect.
class Save {
 public:
  virtual ~Save() = default;
  virtual std::FILE* file() const = 0;

  /// @throws SaveFailure, std::bad_alloc
  virtual void take_place() = 0;
};

/// Ends an earlier write in place to the target, when one did not end, and opens the file to write
/// to.
///
/// @param notice  set to what else the user should know
/// @throws SaveFailure, std::bad_alloc
std::unique_ptr<Save> start_save(const char* path, Content content, std::string& notice);

/// Gives a whole file what the one at `place` has beside its content, and puts it on the disk. When
/// nothing stands there, it stays as it is.
///
/// @throws SaveFailure, also when this process may not write the other file
void make_ready(const std::filesystem::path& fresh, const std::filesystem::path& place);

/// Renames a file, in place of the one that is there.
///
/// @throws SaveFailure
void move_over(const std::filesystem::path& fresh, const std::filesystem::path& place);

/// Waits until the names in a folder are on the disk. On Windows it is each renaming that waits.
///
/// @param folder  empty: the working folder
/// @throws SaveFailure
void sync_folder(const std::filesystem::path& folder);

inline constexpr const char* kEarlierWriteEnded = "an earlier write did not end, and was ended now";

}  // namespace zelk::files

#endif
