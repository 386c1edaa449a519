#include "edit/edit_file.hpp"

#include <algorithm>

#include "input/lookup.hpp"
#include "save/rounding.hpp"
#include "save/saving.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Makes the edits one after the other.
///
/// @return a line for each, which says what it did
std::vector<std::string> apply_edits(const FileEdits& file, DatabaseEditor& editor) {
  std::vector<std::string> lines;
  for (const Edit& edit : file.edits) {
    try {
      std::vector<std::string> words = edit.words;
      lines.push_back((editor.*edit.apply)(words));
    } catch (const RequestError& error) {
      throw RequestError(fmt::format("{}: {}", edit.option, error.what()));
    }
  }
  return lines;
}

/// What edits leave behind must fit into a file; numbers that they do not touch must stay.
///
/// @param before  numbers of the unedited database that are rounded in a file
/// @throws RequestError
void check_result(const FileEdits& file, const OpenedDatabase& opened,
                  const std::vector<Rounding>& before) {
  if (opened.database->SymbolsShortenedOnRead())
    throw RequestError(write_complaint(ZelkErrorNotWritten, *opened.database));
  if (!file.allow_rounding) {
    std::vector<Rounding> untouched = roundings_of(opened.encoded());
    std::erase_if(untouched, [&before](const Rounding& rounding) {
      return std::ranges::find(before, rounding) == before.end();
    });
    check_roundings(untouched, file.target(), false);
  }
  check_trial_write(opened.encoded(), file.target());
}

/// @throws RequestError when the database cannot be written
void write(const FileEdits& file, ZelkWriteManager& manager, const OpenedDatabase& opened) {
  save(*opened.database, file.target(), [&] {
    if (!opened.database->IsPathEqual(file.path.c_str()))
      throw RequestError("somebody has changed the file meanwhile");
    return manager.WriteDatabase(opened.name, file.output.empty() ? nullptr : file.output.c_str());
  });
}

}  // namespace

bool edit_file(const FileEdits& file, Output& out) {
  ZelkWriteManager manager(static_cast<void*>(nullptr));
  const OpenedDatabase opened = open_database(manager, file.path);
  print_reports(opened, file.path);
  if (!opened.database) return false;
  const std::string* place = &file.path;  // what a fault is about
  try {
    if (!manager.LockDatabase(opened.name, "it is being edited")) throw RequestError("locked");
    const std::vector<Rounding> roundings = roundings_of(opened.encoded());
    DatabaseEditor editor(manager, opened);
    const std::vector<std::string> lines = apply_edits(file, editor);
    place = &file.target();
    check_result(file, opened, roundings);
    // When the output does not take these lines, the program ends here with the file as it was.
    for (const std::string& line : lines) out.line("{}", line);
    out.flush();
    if (!file.dry_run) write(file, manager, opened);
  } catch (const RequestError& error) {
    print_error(behind_path(*place, error.what()));
    return false;
  }
  out.line("{} {}", escaped(*place), file.dry_run ? "not written" : "written");
  return true;
}

}  // namespace zelk::tool
