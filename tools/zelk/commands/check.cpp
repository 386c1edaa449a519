#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "check/faults/diagnose.hpp"
#include "commands/commands.hpp"
#include "findings/options.hpp"
#include "input/diagnosis.hpp"
#include "input/opening.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// "3 nodes, 1 message, ...". What few databases have is left out when there is none.
std::string counts(const ZelkDatabase& database) {
  std::size_t signals = 0;
  std::size_t groups = 0;
  for (const msgblk& message : each(database.messages)) {
    signals += each(message.signals).size();
    groups += each(message.siggroups).size();
  }
  std::string text =
      fmt::format("{}, {}, {}, {}, {}, {}", counted(each(database.nodes).size(), "node"),
                  counted(each(database.messages).size(), "message"), counted(signals, "signal"),
                  counted(each(database.env_vars).size(), "environment variable"),
                  counted(each(database.value_tables).size(), "value table"),
                  counted(each(database.attr_defs).size(), "attribute definition"));
  const std::size_t types = each(database.signal_types).size();
  const std::size_t categories = each(database.categories).size();
  if (types) text += ", " + counted(types, "signal type");
  if (groups) text += ", " + counted(groups, "signal group");
  if (categories) text += ", " + counted(categories, "category", "categories");
  return text;
}

struct CheckArguments {
  std::vector<std::string> paths;
  FindingsOptions findings;
  bool is_verbose = false;
};

class Check {
 public:
  Check(const CheckArguments& arguments, Output& out)
      : arguments_(arguments),
        out_(out),
        report_(make_report(arguments.findings.form(), out, sentence_of)) {}

  ExitCode run() {
    for (const std::string& path : arguments_.paths) check(path);
    report_->finish();
    return code_;
  }

 private:
  static std::string sentence_of(std::string_view rule) {
    const std::string_view sentence = check::sentence_of_fault(rule);
    return std::string(sentence.empty() ? "The file cannot be read." : sentence);
  }

  bool is_text() const { return arguments_.findings.form() == FindingsForm::kText; }

  void fail(ExitCode code) { code_ = std::max(code_, code); }

  void check(const std::string& path) {
    DatabaseFile file;
    const ZelkDatabase* const database = file.open(path);
    const OpenedDatabase& opened = file.opened();
    const bool is_own = format_of_file(path).value_or(Format{}).is_own();
    const bool is_folder = file_type(path) == std::filesystem::file_type::directory;
    if (!database && (is_folder || opened.error != ZelkErrorNoDatabase))
      return report_unopened(opened, path);
    std::optional<Diagnosis> diagnosis;
    if (is_own) diagnosis = diagnose(opened, path, arguments_.findings.max_errors);
    if (database && is_text()) print_counts(*database, path);
    if (!diagnosis) return report_lines(opened, path);
    add(*diagnosis);
    const bool has_all = diagnosis->findings.count != 0 && !arguments_.is_verbose;
    if (is_text() && !has_all) print_lines(opened, path);
  }

  void add(const Diagnosis& diagnosis) {
    report_->add(diagnosis.source, diagnosis.findings);
    if (arguments_.findings.fail_with(diagnosis.findings)) fail(kExitFailure);
    out_.flush();  // keeps the order of lines where both outputs meet
    print_more(diagnosis.source, diagnosis.findings);
  }

  void print_counts(const ZelkDatabase& database, const std::string& path) {
    out_.line("{}: ok, {}", escaped(path), counts(database));
    const Output::Indent indent(out_);
    if (database.SymbolsShortenedOnRead()) out_.line("warning: {}", kShortenedWarning);
  }

  void report_unopened(const OpenedDatabase& opened, const std::string& path) {
    fail(kExitTrouble);
    out_.flush();
    for (const std::string& line : opened.reports) print_error(behind_path(path, line));
  }

  /// What the library or a module says.
  void print_lines(const OpenedDatabase& opened, const std::string& path) {
    for (const std::string& line : opened.reports) {
      const bool is_read = opened.database != nullptr;
      out_.line("{}", is_read ? "  warning: " + line : behind_path(path, line));
    }
  }

  /// Of a file in which the checks cannot look for themselves.
  void report_lines(const OpenedDatabase& opened, const std::string& path) {
    using check::Severity;
    check::Findings findings;
    for (const std::string& line : opened.reports) {
      findings.add({opened.database ? Severity::kWarning : Severity::kError,
                    name_of(check::FaultKind::kRefused),
                    {},
                    line});
    }
    if (arguments_.findings.fail_with(findings)) fail(kExitFailure);
    if (is_text()) {
      print_lines(opened, path);
    } else {
      report_->add(check::Source(path, ""), findings);
    }
  }

  const CheckArguments& arguments_;
  Output& out_;
  std::unique_ptr<FindingsReport> report_;
  ExitCode code_ = kExitSuccess;
};

}  // namespace

void add_check_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "check", "Read files and tell what they hold, or all that is wrong with them");
  command->footer(
      "Exit codes:\n"
      "  0  no finding is as severe as --fail-on\n"
      "  1  there are such findings\n"
      "  2  a file cannot be opened, or the command line is wrong");
  const auto arguments = std::make_shared<CheckArguments>();
  command->add_option("FILE", arguments->paths, "Databases to read")
      ->required()
      ->option_text("...");
  add_findings_options(*command, arguments->findings);
  command->add_flag("--verbose", arguments->is_verbose, "What the library itself reports, too");
  command->callback([arguments, &action] {
    action = [arguments](Output& out) { return Check(*arguments, out).run(); };
  });
}

}  // namespace zelk::tool
