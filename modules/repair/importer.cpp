// Fills a database from a file of the library's own format that the library refuses.

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "base/encoding.hpp"
#include "check/includes/mend.hpp"
#include "common/file.hpp"
#include "common/module.hpp"
#include "common/records.hpp"
#include "repair/options.hpp"
#include "zelk/dbc.h"
#include "zelk/model.h"

namespace zelk::modules {

namespace {

constexpr std::size_t kMostNotes = 100;

/// Line 0 for a place in an included file, whose path is in the text then.
struct Note {
  std::int32_t line;
  std::string text;
};

Note note_of(const check::Source& source, const check::Finding& finding) {
  const std::string& path = source.path_at(finding.span.begin);
  const std::uint32_t line = source.position(finding.span.begin).line;
  std::string text = std::string(finding.rule) + ": " + finding.message;
  if (!finding.cause.empty()) text += "; " + finding.cause;
  if (path == source.path()) return {static_cast<std::int32_t>(line), std::move(text)};
  return {0, path + ":" + std::to_string(line) + ": " + text};
}

void note(std::uint32_t number, const check::Source& source, const check::Findings& findings) {
  const std::size_t shown = std::min(findings.list.size(), kMostNotes);
  for (std::size_t i = 0; i < shown; ++i) {
    const auto [line, text] = note_of(source, findings.list[i]);
    zelk_note(number, line, text.c_str());
  }
  if (shown == findings.count) return;
  zelk_note(number, 0, ("and " + std::to_string(findings.count - shown) + " more").c_str());
}

check::MendedFile mended(const char* file, std::string_view option) {
  const check::MendOptions options = parse_options(to_utf8(option, encoding_of(option)));
  const std::string_view path = file;
  check::MendedFile result =
      check::mend({to_utf8(path, encoding_of(path)), read_file(file)}, options);
  // What the reader says of the file as it is does not count.
  zelk_clear_error_text();
  return result;
}

void read(std::string_view text, const Database& d) {
  attr_def* slots[4] = {};
  zelk_reset_symbols_shortened();
  const std::uint32_t error = zelk_try_read_text(
      text.data(), text.size(), &d.nodes.get(), &d.messages.get(), &d.env_vars.get(),
      &d.bit_timings.get(), &d.attr_defs.get(), &d.attr_values.get(), &d.categories.get(),
      &d.filter.get(), &d.comment.get(), &d.version_text.get(), &d.signal_types.get(),
      &d.value_tables.get(), slots);
  if (error != ZELK_OK) throw std::bad_alloc();  // it was read before
  if (zelk_symbols_shortened()) zelk_note(ZELK_ERR_FORMAT, 0, "names or units were cut");
}

}  // namespace

void import_file(const char* file, const Database& database, std::string_view option) {
  const check::MendedFile result = mended(file, option);
  if (result.outcome == check::Outcome::kUnmendable) {
    note(ZELK_ERR_CONVERTED_FORMAT, result.source, result.faults);
    throw Fault("the file cannot be mended");
  }
  read(result.text, database);
  note(ZELK_ERR_FORMAT, result.source, result.notes);
  note(ZELK_ERR_FORMAT, result.source, result.mends);
}

}  // namespace zelk::modules
