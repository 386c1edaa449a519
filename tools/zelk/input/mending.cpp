#include "input/mending.hpp"

#include <fmt/format.h>

#include <system_error>
#include <utility>

#include "base/quoting.hpp"
#include "files/files.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostFaults = 10;

/// Fills databases with what is in memory.
class TextImporter : public NamelessImporter {
 public:
  TextImporter(ZelkWriteManager& manager, std::string_view text)
      : NamelessImporter(manager, nullptr, nullptr), text_(text) {}

  bool has_shortened() const { return has_shortened_; }

 protected:
  bool ProcessFile(const char* /*named for reports*/) override {
    ZelkDatabase& d = *database_;
    attr_def* slots[4] = {};
    zelk_reset_symbols_shortened();
    const std::uint32_t error =
        zelk_try_read_text(text_.data(), text_.size(), &d.nodes, &d.messages, &d.env_vars,
                           &d.bit_timings, &d.attr_defs, &d.attr_values, &d.categories, &d.filter,
                           &d.comment, &d.user_data, &d.signal_types, &d.value_tables, slots);
    has_shortened_ = zelk_symbols_shortened() != 0;
    return error == ZELK_OK;
  }

 private:
  std::string_view text_;
  bool has_shortened_ = false;
};

/// `mend_line` as a report, which gets the path of the main file in front.
std::string report_line(const check::Source& source, const check::Finding& finding) {
  std::string line = mend_line(source, finding);
  const std::string lead = escaped(source.path()) + ":";
  if (line.starts_with(lead)) line.erase(0, lead.size());
  return line;
}

void report_faults(const check::Mended& mended, std::vector<std::string>& reports) {
  for (const check::Finding& fault : mended.faults.list) {
    if (reports.size() == kMostFaults) break;
    reports.push_back(report_line(mended.source, fault));
  }
  const std::uint64_t left = mended.faults.count - reports.size();
  if (left > 0) reports.push_back(fmt::format("and {} more", left));
  reports.emplace_back("cannot be mended");
}

void report_mends(const check::MendedFile& mended, bool lists_all,
                  std::vector<std::string>& reports) {
  for (const check::Finding& note : mended.notes.list)
    reports.push_back(report_line(mended.source, note));
  if (mended.mends.list.empty()) return;
  const std::string count = counted(mended.mends.count, "place");
  reports.push_back("mended in " + count + (lists_all ? "" : "; --verbose tells which"));
  if (!lists_all) return;
  for (const check::Finding& mend : mended.mends.list)
    reports.push_back(report_line(mended.source, mend));
}

}  // namespace

check::MendedFile mend_file(const std::string& path, const check::MendOptions& options) try {
  std::string bytes = files::read_all(path.c_str());
  if (bytes.size() > check::Source::kLongest) throw RequestError("it has more than 4 GiB");
  return check::mend(check::Source(path, std::move(bytes)), options);
} catch (const std::system_error& error) {
  throw RequestError("cannot be read: " + escaped(utf8(error.code().message())));
}

std::string mend_line(const check::Source& source, const check::Finding& finding) {
  const auto [line, column] = source.position(finding.span.begin);
  std::string text = fmt::format("{}:{}:{}: {}", escaped(source.path_at(finding.span.begin)), line,
                                 column, escaped(utf8(finding.message)));
  if (!finding.cause.empty()) text += "; " + escaped(utf8(finding.cause));
  return text + fmt::format(" [{}]", finding.rule);
}

OpenedDatabase import_mended(ZelkWriteManager& manager, const std::string& path, const char* name,
                             const Mending& mending) try {
  OpenedDatabase opened;
  const check::MendedFile mended = mend_file(path, mending.options);
  if (mended.outcome == check::Outcome::kUnmendable) {
    report_faults(mended, opened.reports);
    return opened;
  }
  TextImporter importer(manager, mended.text);
  const ZelkError error = importer.Import(name, &opened.name, path.c_str());
  finish_opening(opened, manager, error, zelk_get_error_text(), path);
  if (opened.database) {
    opened.database->symbols_shortened = importer.has_shortened();
    report_mends(mended, mending.lists_all, opened.reports);
  }
  return opened;
} catch (const RequestError& error) {
  OpenedDatabase opened;
  opened.reports = {error.what()};
  return opened;
}

}  // namespace zelk::tool
