#include "edit/edit_file.hpp"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "check/patch/hunks.hpp"
#include "edit/text_edit.hpp"
#include "input/lookup.hpp"
#include "save/replace_file.hpp"
#include "save/rounding.hpp"
#include "save/saving.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// @throws RequestError when the file is not the one that was read
void check_unchanged(const FileEdits& file, const OpenedDatabase& opened) {
  if (opened.database->IsPathEqual(file.path.c_str())) return;
  std::error_code error;
  static_cast<void>(std::filesystem::current_path(error));
  throw RequestError(error ? "the working folder is gone: give the file's whole path"
                           : "somebody has changed the file meanwhile");
}

/// When the output does not take the lines, the program ends here with the file as it was.
void print(const std::vector<std::string>& lines, Output& out) {
  for (const std::string& line : lines) out.line("{}", line);
  out.flush();
}

/// Makes the edits one after the other.
///
/// @param place  file that faults are about from then on
/// @return a line for each, which says what it did
std::vector<std::string> apply_edits(const FileEdits& file, DatabaseEditor& editor,
                                     const std::string*& place) {
  std::vector<std::string> lines;
  for (const Edit& edit : file.edits) {
    try {
      std::vector<std::string> words = edit.words;
      lines.push_back((editor.*edit.apply)(words));
    } catch (const RequestError& error) {
      throw RequestError(fmt::format("{}: {}", edit.option, error.what()));
    }
  }
  editor.check_result();
  place = &file.target();
  return lines;
}

/// The whole file in the library's own form.
class CanonicalFile {
 public:
  CanonicalFile(const FileEdits& file, const OpenedDatabase& opened)
      : file_(file), opened_(opened), roundings_(roundings_of(opened.encoded())) {}

  /// What edits leave behind must fit into a file; numbers that they do not touch must stay.
  ///
  /// @throws RequestError
  void check() const {
    if (opened_.database->SymbolsShortenedOnRead())
      throw RequestError(write_complaint(ZelkErrorNotWritten, *opened_.database));
    if (!file_.allow_rounding) {
      std::vector<Rounding> untouched = roundings_of(opened_.encoded());
      std::erase_if(untouched, [this](const Rounding& rounding) {
        return std::ranges::find(roundings_, rounding) == roundings_.end();
      });
      check_roundings(untouched, file_.target(), false);
    }
    check_trial_write(opened_.encoded(), file_.target());
  }

  /// @throws RequestError when the database cannot be written
  void write(ZelkWriteManager& manager) const {
    const char* const output = file_.output.empty() ? nullptr : file_.output.c_str();
    save(*opened_.database, file_.target(), [&] {
      check_unchanged(file_, opened_);
      return manager.WriteDatabase(opened_.name, output);
    });
  }

 private:
  const FileEdits& file_;
  const OpenedDatabase& opened_;
  std::vector<Rounding> roundings_;  ///< numbers of the unedited database
};

/// @return a word about what became of the file
std::string_view edit_canonical(const FileEdits& file, ZelkWriteManager& manager,
                                const OpenedDatabase& opened, Output& out,
                                const std::string*& place) {
  const CanonicalFile result(file, opened);
  DatabaseEditor editor(manager, opened);
  const std::vector<std::string> lines = apply_edits(file, editor, place);
  result.check();
  print(lines, out);
  if (!file.dry_run) result.write(manager);
  return file.dry_run ? "not written" : "written";
}

void print_diff(const check::Source& original, const check::Patched& patched, Encoding encoding,
                Output& out) {
  for (const check::DiffLine& line : check::diff_lines(original, patched))
    out.line("{}{}", line.mark, escaped(to_utf8(line.text, encoding)));
  out.flush();
}

/// @return a word about what became of the file
std::string_view edit_text(const FileEdits& file, ZelkWriteManager& manager,
                           const OpenedDatabase& opened, Output& out, const std::string*& place) {
  const TextEdit text(file.path, opened);
  if (text.original().size() == 0)
    throw RequestError("cannot be read a second time, as an edit needs it: copy it to a file");
  check_unchanged(file, opened);
  DatabaseEditor editor(manager, opened, text.count_listed_nodes());
  const std::vector<std::string> lines = apply_edits(file, editor, place);
  const check::Patched result = text.finish(file.target());
  print(lines, out);
  if (file.shows_diff) print_diff(text.original(), result, opened.encoding, out);
  if (file.dry_run) return "not written";
  if (result.splices.empty() && file.output.empty()) {
    end_earlier_write(file.target());
    return "unchanged";
  }
  check_unchanged(file, opened);
  replace_file(file.target(), result.text);
  return "written";
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
    const auto edit = file.is_canonical ? edit_canonical : edit_text;
    const std::string_view result = edit(file, manager, opened, out, place);
    out.line("{} {}", escaped(file.target()), result);
  } catch (const RequestError& error) {
    print_error(behind_path(*place, error.what()));
    return false;
  }
  return true;
}

}  // namespace zelk::tool
