/// \file
/// Editing a file: all edits are written, or none.

#ifndef ZELK_TOOL_EDIT_EDIT_FILE_HPP
#define ZELK_TOOL_EDIT_EDIT_FILE_HPP

#include <string>
#include <vector>

#include "edit/database_editor.hpp"
#include "term/output.hpp"

namespace zelk::tool {

/// One edit of the command line.
struct Edit {
  std::string option;  ///< for a complaint about it
  std::string (DatabaseEditor::*apply)(DatabaseEditor::Words);
  std::vector<std::string> words;  ///< behind the option
};

/// The edits of one file, in their order.
struct FileEdits {
  std::string path;
  std::string output;           ///< file to write instead; empty for `path`
  bool dry_run = false;         ///< nothing is written
  bool shows_diff = false;      ///< the lines that change are printed
  bool is_canonical = false;    ///< all of it is written in the library's own form
  bool allow_rounding = false;  ///< then numbers that no edit touches may be rounded
  std::vector<Edit> edits;

  const std::string& target() const { return output.empty() ? path : output; }
};

/// Reads the file, makes the edits, prints what each did, and writes the file. Faults are printed
/// on standard error, and then nothing is written.
///
/// @return whether all edits are made, and written unless only tried
bool edit_file(const FileEdits& file, Output& out);

}  // namespace zelk::tool

#endif
