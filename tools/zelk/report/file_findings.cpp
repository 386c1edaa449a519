#include "report/file_findings.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "base/quoting.hpp"
#include "check/lint/places.hpp"
#include "files/files.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "input/mending.hpp"
#include "lint/configuration.hpp"
#include "term/system.hpp"

namespace zelk::tool {

namespace {

using check::Role;
using check::Statement;
using check::Word;

constexpr std::uint64_t kMostFindings = 2000;

/// Finds the records that statements are about.
class RecordsOfText {
 public:
  RecordsOfText(const check::Document& document, const check::Names& names,
                const check::RecordsView& records)
      : document_(document), names_(names), places_(document, names, records) {
    for (const check::PlacedNode& node : places_.nodes()) nodes_.emplace(node.token, node.record);
  }

  /// Of the statement around a place; null when it is about none.
  const void* at(std::uint32_t offset) const {
    const auto& all = document_.statements;
    const auto behind = std::ranges::upper_bound(
        all, offset, {}, [this](const Statement& each) { return document_.begin_of(each); });
    if (behind == all.begin()) return nullptr;
    const auto index = static_cast<std::uint32_t>(behind - all.begin() - 1);
    const Statement& statement = all[index];
    if (statement.kind == Word::kMessage) return message(index);
    if (statement.kind == Word::kSignal) return signal(index);
    if (statement.kind == Word::kVariable) return variable(index);
    return statement.kind == Word::kNodes ? node_at(statement, offset) : subject_of(statement);
  }

 private:
  template <typename Placed>
  static const void* record_of(const Placed* placed) {
    return placed ? placed->record : nullptr;
  }
  const void* message(std::uint32_t index) const { return record_of(places_.message_at(index)); }
  const void* signal(std::uint32_t index) const { return record_of(places_.signal_at(index)); }
  const void* variable(std::uint32_t index) const { return record_of(places_.variable_at(index)); }
  const void* node(std::uint32_t token) const {
    const auto found = nodes_.find(token);
    return found == nodes_.end() ? nullptr : found->second;
  }

  const void* node_at(const Statement& statement, std::uint32_t offset) const {
    for (std::uint32_t token = statement.first; token < statement.end; ++token)
      if (document_.tokens[token].begin == offset) return node(token);
    return nullptr;
  }

  /// The object to which a comment, a value or the like belongs.
  const void* subject_of(const Statement& statement) const {
    if (!statement.is_readable) return nullptr;
    if (const auto id = whole_value(document_, statement, Role::kMessageRef)) {
      const std::uint32_t owner = names_.message(*id);
      if (owner == Statement::kNone) return nullptr;
      const std::string_view name = document_.text_of(statement, Role::kSignalRef);
      return name.empty() ? message(owner) : signal(names_.signal(owner, name));
    }
    if (const auto name = document_.text_of(statement, Role::kVariableRef); !name.empty())
      return variable(names_.variable(name));
    const auto name = document_.text_of(statement, Role::kNodeRef);
    return name.empty() ? nullptr : node(names_.node(name));
  }

  const check::Document& document_;
  const check::Names& names_;
  check::Places places_;
  std::unordered_map<std::uint32_t, const void*> nodes_;  ///< by their tokens
};

std::string place_in(const check::Source& source, const check::Finding& finding) {
  const auto [line, column] = source.position(finding.span.begin);
  return fmt::format("{}:{}", line, column);
}

ShownFinding shown(const check::Finding& finding) {
  std::string message = utf8(finding.message);
  if (!finding.cause.empty()) message += "; " + utf8(finding.cause);
  return {finding.severity, std::string(finding.rule), std::move(message), ""};
}

check::RecordsView records_of(const ZelkDatabase& database) {
  return {database.nodes, database.messages, database.env_vars, database.attr_defs,
          database.attr_values};
}

/// @param has_places  whether those of the text are those of the file
void add_findings(FileFindings& found, const std::string& path, std::string text,
                  const ZelkDatabase& database, bool has_places) {
  const std::string configuration = nearest_configuration(path).string();
  const LintConfiguration settings =
      configuration.empty() ? LintConfiguration{} : read_configuration(configuration);
  const check::Document document = check::read_document(check::Source(path, std::move(text)));
  const check::Names names(document);
  const check::RecordsView view = records_of(database);
  const check::LintResult result =
      check::lint(document, names, view, settings.settings, kMostFindings);
  const RecordsOfText records(document, names, view);
  found.counts = result.counts;
  for (const check::Finding& finding : result.findings.list) {
    ShownFinding entry = shown(finding);
    if (has_places) entry.place = place_in(document.source, finding);
    entry.record = records.at(finding.span.begin);
    if (entry.record) found.by_record[entry.record].push_back(found.list.size());
    found.list.push_back(std::move(entry));
  }
}

void add_mends(FileFindings& found, const check::MendedFile& mended) {
  found.mend_count = mended.mends.count;
  for (const check::Finding& mend : mended.mends.list) {
    if (found.mends.size() == kMostFindings) return;
    found.mends.push_back(shown(mend));
    found.mends.back().place = place_in(mended.source, mend);
  }
}

void find_in_text(FileFindings& found, const std::string& path, const ZelkDatabase& database,
                  const Mending& mending) {
  if (!mending.is_wanted) {
    std::string text = files::read_all(path.c_str());
    if (text.size() > check::Source::kLongest) throw RequestError("it has more than 4 GiB");
    return add_findings(found, path, std::move(text), database, true);
  }
  check::MendedFile mended = mend_file(path, mending.options);
  add_mends(found, mended);
  add_findings(found, path, std::move(mended.text), database,
               mended.outcome == check::Outcome::kUnneeded);
}

}  // namespace

FileFindings find_in_file(const std::string& path, const ZelkDatabase& database,
                          const Mending& mending) {
  FileFindings found;
  if (!format_of_file(path).value_or(Format{}).is_own()) {
    found.why_none = "Rules are applied to DBC files only.";
  } else if (file_type(path) != std::filesystem::file_type::regular) {
    found.why_none = "Rules are applied to files that can be read twice.";
  } else {
    try {
      find_in_text(found, path, database, mending);
    } catch (const std::system_error& error) {
      throw RequestError("cannot be read again: " + utf8(error.code().message()));
    }
  }
  return found;
}

}  // namespace zelk::tool
