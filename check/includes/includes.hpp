/// \file
/// Comments that name files to include: `CM_ "IMPORT other.dbc";`.

#ifndef ZELK_CHECK_INCLUDES_INCLUDES_HPP
#define ZELK_CHECK_INCLUDES_INCLUDES_HPP

#include <string>
#include <string_view>

#include "check/findings/finding.hpp"
#include "check/statements/document.hpp"

namespace zelk::check {

/// The name by which includes are switched off and reported.
inline constexpr std::string_view kIncludeRule = "include";

/// A source with the files that its comments name.
struct Included {
  Source source;
  std::uint32_t count = 0;  ///< of included files
  /// Of severity `kNote` for each comment that gave way to a file, `kWarning` for one that leads
  /// back to a file under way, and `kError` for one whose file cannot be taken. Their places are
  /// those of `source`.
  Findings findings{};

  /// Whether all files could be taken that there are; a comment whose file could not stays.
  bool is_whole() const;
};

/// Puts the texts of files in the places of the comments that name them, and so on in these. Each
/// file is taken once, where it is named first.
///
/// A name is taken below `folder` only, with ".dbc" added when there is no file without. Absolute
/// names, names with "..", a backslash, a colon or a control character, links that lead out of the
/// folder, and what is no regular file are refused. Texts that are not encoded like those of the
/// main file (base/encoding.hpp) are converted.
///
/// @param source  a single file
/// @param folder  path in UTF-8
Included include_files(Source source, const std::string& folder);

/// A note for each comment that names a file, which stays a comment.
///
/// @param source  a single file
Findings find_includes(const Source& source);

}  // namespace zelk::check

#endif
