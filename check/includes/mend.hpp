/// \file
/// A file made readable, with the files that it includes.

#ifndef ZELK_CHECK_INCLUDES_MEND_HPP
#define ZELK_CHECK_INCLUDES_MEND_HPP

#include <string>
#include <string_view>
#include <vector>

#include "check/repair/repair.hpp"

namespace zelk::check {

struct MendOptions : RepairOptions {
  /// Folder in UTF-8, below which comments may name files to include (`include_files`); empty: they
  /// stay comments, with a note about each.
  std::string include_folder{};
};

struct MendedFile : Mended {
  Findings notes{};  ///< of comments that name files, and stay; of severity `kNote`
};

/// `include_files`, and then `repair`. A text without any readable statement is not mended, unless
/// it is empty. Without a file that is named the source is not mended, and stays as it was given.
/// To keep `kIncludeRule` leaves all comments as they are.
///
/// @param source  a single file
MendedFile mend(Source source, const MendOptions& options);

/// The names of all mends, by which they are kept.
std::vector<std::string_view> mend_names();

}  // namespace zelk::check

#endif
