#include "save/saving.hpp"

#include <cstddef>
#include <utility>
#include <vector>

#include "base/quoting.hpp"
#include "diff/diff_text.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "save/temporary_file.hpp"
#include "term/output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// The lines of the error text after a save, `escaped`; without the words with which the library
/// begins a line: what failed, and the file.
std::vector<std::string> save_notes(const ZelkDatabase& database) {
  const std::string failure = zelk_format_error(ZELK_ERR_WRITE, 0, nullptr);
  const std::string leads[] = {failure, ", ", escaped(utf8(view(database.path))) + ": "};
  std::vector<std::string> notes;
  for (std::string note : escaped_lines(utf8(zelk_get_error_text()))) {
    for (const std::string& lead : leads)
      if (note.starts_with(lead)) note.erase(0, lead.size());
    if (!note.empty()) notes.push_back(std::move(note));
  }
  return notes;
}

constexpr std::size_t kMostWarnings = 10;

}  // namespace

void check_trial_write(EncodedDatabase database, const std::string& path) {
  const TemporaryFile temporary;
  const std::string written = temporary.path();
  write_to(written, database.records);
  DatabaseFile file;
  if (!file.open(written)) {
    const std::string report = file.reports().empty() ? "" : file.reports().front();
    throw RequestError(behind_path("not written, as it could not be read again", report));
  }
  std::size_t count = 0;
  check::for_each_difference(database, file.encoded(), [&](const check::Difference& difference) {
    if (++count > kMostWarnings) return;
    print_error(behind_path(
        path, "warning: in the file this is otherwise: " + difference_line(difference)));
  });
  if (count > kMostWarnings)
    print_error(behind_path(path, fmt::format("warning: and {} more", count - kMostWarnings)));
}

void save(const ZelkDatabase& database, const std::string& path,
          const std::function<ZelkError()>& write) {
  const HeldSignals held;
  zelk_clear_error_text();
  const ZelkError error = write();
  if (error != ZelkErrorOk) throw RequestError(write_complaint(error, database));
  for (const std::string& note : save_notes(database))
    print_error(behind_path(path, "warning: " + note));
}

std::string write_complaint(ZelkError error, const ZelkDatabase& database) {
  if (database.SymbolsShortenedOnRead() && error == ZelkErrorNotWritten) {
    return "not written: names or units were cut, and the file would lose them; zelk rewrite "
           "--allow-cut writes it all the same";
  }
  std::string reasons;
  for (const std::string& reason : save_notes(database))
    reasons += (reasons.empty() ? "" : "; ") + reason;
  if (!reasons.empty()) return "could not be written: " + reasons;
  if (error == ZelkErrorReadOnly) return "could not be written: the file is read-only";
  return "could not be written";
}

}  // namespace zelk::tool
