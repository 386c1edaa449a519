/// \file
/// The text of a file that is being edited.

#ifndef ZELK_TOOL_EDIT_TEXT_EDIT_HPP
#define ZELK_TOOL_EDIT_TEXT_EDIT_HPP

#include <cstddef>
#include <string>

#include "check/patch/patch.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// Carries edits of records over to the text from which they were read.
class TextEdit {
 public:
  /// @param path    file of the database
  /// @param opened  as it was read, and before any edit; must outlive the object
  /// @throws RequestError when the file cannot be read again
  TextEdit(const std::string& path, const OpenedDatabase& opened);

  const check::Source& original() const { return original_.source; }

  /// Nodes in the list of nodes.
  std::size_t count_listed_nodes() const;

  /// The text with all that was edited since, and nothing else: it has been read, and the records
  /// compared. What a file holds otherwise is printed on standard error as a warning about `path`.
  ///
  /// @throws RequestError when the edits leave what no file can hold, or the text cannot be changed
  check::Patched finish(const std::string& path) const;

 private:
  bool is_right(const std::string& text, const std::string& wanted, const std::string& path,
                bool tells) const;

  const OpenedDatabase& opened_;
  check::Document original_;
  std::string before_;
};

}  // namespace zelk::tool

#endif
