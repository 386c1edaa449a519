#include "opening.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "base/characters.hpp"
#include "base/encoded_database.hpp"
#include "base/list.hpp"
#include "check/faults/diagnose.hpp"
#include "check/includes/mend.hpp"
#include "check/repair/judge.hpp"
#include "check/statements/document.hpp"
#include "common/records.hpp"
#include "files/files.hpp"
#include "json/converter.hpp"
#include "kcd/converter.hpp"
#include "zelk/errors.h"
#include "zelk/zelk.h"

namespace zelk::python {
namespace {

/// What is shown of the faults of a file, which may have a million.
constexpr std::uint64_t kMostFindings = 100;
/// A log that is taken for a database must not fill the memory.
constexpr std::size_t kMostBytesOfRefusal = std::size_t{64} << 20;

/// What the reader has said last, without its line feed.
std::string last_report() {
  std::string text = zelk_get_thread_error_text();
  if (text.ends_with('\n')) text.pop_back();
  text.erase(0, text.rfind('\n') + 1);
  return to_utf8(text, encoding_of(text));
}

bool read_text(Model& d, const std::string& text) {
  zelk_clear_error_text();
  zelk_reset_symbols_shortened();
  const std::uint32_t error = zelk_try_read_text(
      text.data(), text.size(), &d.nodes, &d.messages, &d.env_vars, &d.bit_timings, &d.attr_defs,
      &d.attr_values, &d.categories, &d.filter, &d.comment, &d.user_data, &d.signal_types,
      &d.value_tables, d.predefined.slots);
  d.symbols_shortened = zelk_symbols_shortened() != 0;
  if (error == ZELK_ERR_MEMORY) throw std::bad_alloc();
  return error == ZELK_OK;
}

void read_dbc(Model& model, const std::string& path) {
  std::string bytes = read_bytes(path);
  if (!read_text(model, bytes)) throw refusal_of(path, std::move(bytes));
}

void read_mended(Model& model, const std::string& path) {
  std::string bytes = read_bytes(path);
  if (bytes.size() > check::Source::kLongest) throw Failure::of_system(EFBIG, path);
  const check::MendedFile mended = check::mend(check::Source(path, std::move(bytes)), {});
  if (mended.outcome == check::Outcome::kUnmendable) {
    throw Failure(FailureKind::kRead, "the file cannot be mended", path, std::nullopt,
                  placed(mended.source, mended.faults));
  }
  model.mends = placed(mended.source, mended.mends);
  model.is_mended = true;
  read_text(model, mended.text);
}

using Import = void (*)(const char*, const modules::Database&, std::string_view);

void import(Model& d, const std::string& path, Import import_file) {
  errno = 0;
  if (!files::open_for_reading(path.c_str())) throw Failure::of_system(errno, path);
  d.is_dbc = false;
  try {
    import_file(path.c_str(),
                {d.messages, d.nodes, d.env_vars, d.attr_defs, d.attr_values, d.bit_timings,
                 d.categories, d.filter, d.comment, d.user_data, d.signal_types, d.value_tables},
                "");
  } catch (const modules::Fault& fault) {
    const auto line = static_cast<std::uint32_t>(fault.line());
    throw Failure(FailureKind::kRead, to_utf8(fault.what(), encoding_of(fault.what())), path,
                  line > 0 ? std::optional(line) : std::nullopt);
  }
  for (const attr_def& definition : each(d.attr_defs)) d.predefined.Insert(definition);
}

}  // namespace

FileFormat format_of(const std::string& path) {
  std::string name = path;
  std::ranges::transform(name, name.begin(), to_lower);
  if (name.ends_with(".kcd")) return FileFormat::kKcd;
  return name.ends_with(".json") ? FileFormat::kJson : FileFormat::kDbc;
}

std::optional<std::filesystem::file_time_type> file_time_of(const std::string& path) {
  std::error_code fault;
  const auto time = std::filesystem::last_write_time(path, fault);
  return fault ? std::nullopt : std::optional(time);
}

std::string read_bytes(const std::string& path) try {
  return files::read_all(path.c_str());
} catch (const std::system_error& error) {
  throw Failure::of_system(error.code().value(), path);
}

Failure refusal_of(const std::string& path, std::string text) {
  Failure failure(FailureKind::kRead, last_report());
  failure.path = path;
  if (text.size() > kMostBytesOfRefusal) return failure;
  const check::Verdict verdict = check::judge(text);
  const check::Document document = check::read_document(check::Source(path, std::move(text)));
  const check::Findings findings = check::diagnose(document, kMostFindings);
  failure.findings = placed(document.source, findings);
  const auto first = std::ranges::find(failure.findings, "error", &PlacedFinding::severity);
  if (first == failure.findings.end()) {
    failure.line = verdict.line_feeds + 1;
    return failure;
  }
  failure.message = first->message;
  failure.line = first->line;
  failure.column = first->column;
  return failure;
}

std::shared_ptr<Model> open_model(const std::string& path, bool repairs) {
  std::shared_ptr<Model> model = Model::make();
  model->file_time_read = file_time_of(path);
  switch (format_of(path)) {
    case FileFormat::kKcd:
      import(*model, path, modules::kcd::import_file);
      break;
    case FileFormat::kJson:
      import(*model, path, modules::json::import_file);
      break;
    case FileFormat::kDbc:
      repairs ? read_mended(*model, path) : read_dbc(*model, path);
      break;
  }
  model->file = path;
  model->encoding = encoding_of(*model);
  return model;
}

}  // namespace zelk::python
