#include "repair/repair_file.hpp"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>

#include "check/faults/diagnose.hpp"
#include "check/includes/includes.hpp"
#include "findings/report.hpp"
#include "input/lookup.hpp"
#include "input/mending.hpp"
#include "input/opening.hpp"
#include "save/replace_file.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

namespace fs = std::filesystem;

fs::path native(const std::string& path) { return {std::u8string(path.begin(), path.end())}; }

/// Whether two paths lead to one file, by whatever names and links.
bool are_same_file(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return fs::equivalent(native(a), native(b), ignored);
}

/// None for what has no such time.
std::optional<fs::file_time_type> time_of(const std::string& path) {
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(native(path), error);
  return error ? std::nullopt : std::optional(time);
}

/// "7 unknown-message, 1 order": the most frequent ones first.
std::string summary_of(const check::Findings& mends) {
  std::map<std::string_view, std::size_t> counts;
  for (const check::Finding& mend : mends.list) ++counts[mend.rule];
  std::multimap<std::size_t, std::string_view, std::greater<>> by_count;
  for (const auto& [rule, count] : counts) by_count.emplace(count, rule);
  std::string text;
  for (const auto& [count, rule] : by_count)
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, rule);
  return text;
}

/// What a mend or fault is about, for the list of rules in SARIF.
std::string sentence_of(std::string_view rule) {
  if (rule == check::kIncludeRule) return "A comment names a file to include";
  return std::string(check::sentence_of_fault(rule));
}

class Repair {
 public:
  Repair(const FileRepair& repair, Output& out) : repair_(repair), out_(out) {}

  bool run() {
    check_target();
    const auto time = time_of(repair_.in);
    const check::MendedFile mended = read();
    const bool is_mended = mended.outcome != check::Outcome::kUnmendable;
    if (!is_mended) {
      report_faults(mended);
      return false;
    }
    report_mends(mended);
    const bool is_change = mended.outcome == check::Outcome::kMended || !repair_.in_place;
    if (!repair_.dry_run) is_change ? write(mended.text, time) : end_earlier();
    if (is_text()) out_.line("{}", result_of(mended));
    return true;
  }

 private:
  bool is_text() const { return repair_.findings.form() == FindingsForm::kText; }

  [[noreturn]] static void fail(const std::string& path, const std::string& why) {
    throw RequestError(behind_path(path, why));
  }

  void check_target() const {
    if (repair_.in_place || repair_.out.empty() || !are_same_file(repair_.in, repair_.out)) return;
    fail(repair_.out, "is the file to read; --in-place replaces it");
  }

  check::MendedFile read() const try {
    return mend_file(repair_.in, repair_.options);
  } catch (const RequestError& error) {
    fail(repair_.in, error.what());
  }

  void write(std::string_view text, const std::optional<fs::file_time_type>& time) const try {
    if (repair_.in_place && time_of(repair_.in) != time)
      throw RequestError("not written: somebody has changed the file meanwhile");
    replace_file(repair_.target(), text);
  } catch (const RequestError& error) {
    fail(repair_.target(), error.what());
  }

  void end_earlier() const try {
    end_earlier_write(repair_.in);
  } catch (const RequestError& error) {
    fail(repair_.in, error.what());
  }

  void report_faults(const check::MendedFile& mended) const {
    const check::Findings faults = shown(mended.faults);
    if (!is_text()) return report(mended.source, {&faults});
    out_.flush();
    print_findings(mended.source, faults);
    print_more(mended.source, faults);
    print_error(behind_path(repair_.in, "cannot be mended"));
  }

  void report_mends(const check::MendedFile& mended) const {
    const check::Findings notes = shown(mended.notes);
    const check::Findings mends = shown(mended.mends);
    if (!is_text()) return report(mended.source, {&notes, &mends});
    for (const check::Findings* const findings : {&notes, &mends}) {
      for (const check::Finding& finding : findings->list)
        out_.line("{}", mend_line(mended.source, finding));
    }
    const std::uint64_t more = mends.count - mends.list.size();
    if (more > 0) out_.line("and {} more; see --max-errors", more);
  }

  void report(const check::Source& source,
              std::initializer_list<const check::Findings*> findings) const {
    const auto report = make_report(repair_.findings.form(), out_, sentence_of);
    for (const check::Findings* const each : findings) report->add(source, *each);
    report->finish();
  }

  /// Cut to the limit.
  check::Findings shown(check::Findings findings) const {
    const std::uint64_t most = repair_.findings.max_errors;
    if (most > 0 && findings.list.size() > most) {
      findings.list.erase(findings.list.begin() + static_cast<std::ptrdiff_t>(most),
                          findings.list.end());
    }
    return findings;
  }

  std::string result_of(const check::MendedFile& mended) const {
    const std::string in = escaped(repair_.in);
    const std::string written =
        escaped(repair_.target()) + (repair_.dry_run ? " not" : "") + " written";
    if (mended.outcome == check::Outcome::kUnneeded) {
      return repair_.in_place || repair_.target().empty()
                 ? in + " needs no mending"
                 : fmt::format("{}: {} needs no mending", written, in);
    }
    const std::string done = fmt::format("mended in {}: {}", counted(mended.mends.count, "place"),
                                         summary_of(mended.mends));
    return repair_.target().empty() ? fmt::format("{} can be {}", in, done)
                                    : fmt::format("{}, {}", written, done);
  }

  const FileRepair& repair_;
  Output& out_;
};

}  // namespace

bool repair_file(const FileRepair& repair, Output& out) { return Repair(repair, out).run(); }

}  // namespace zelk::tool
