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

inline constexpr const char* kEarlierWriteEnded = "an earlier write did not end, and was ended now";

}  // namespace zelk::files

#endif
