#include <algorithm>
#include <future>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/quoting.hpp"
#include "check/faults/diagnose.hpp"
#include "check/lint/lint.hpp"
#include "commands/commands.hpp"
#include "files/files.hpp"
#include "findings/options.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "lint/configuration.hpp"
#include "term/json_array.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr const char* kLintExitCodes =
    "Exit codes:\n"
    "  0  no file has a finding as severe as --fail-on says\n"
    "  1  one has, or is refused by the reader: then its faults are shown\n"
    "  2  a file or configuration cannot be read, the output cannot be written, or the command\n"
    "     line is wrong";

constexpr const char* kAllRules = "all";

struct LintArguments {
  std::vector<std::string> paths;
  std::vector<std::string> disabled;
  std::vector<std::string> enabled;
  std::string configuration;
  bool no_configuration = false;
  bool list_rules = false;
  std::string explained;
  FindingsOptions findings;
  bool has_fail_on = false;  ///< on the command line
};

// --- Rules ---

/// Of a refused file there are faults in place of rules.
std::string sentence_of(std::string_view name) {
  if (const check::Rule* const rule = check::find_rule(name))
    return std::string(rule->summary) + '.';
  return std::string(check::sentence_of_fault(name));
}

void list_rules(bool as_json, Output& out) {
  JsonArray array(out);
  for (const check::Rule* const rule : check::all_rules()) {
    const std::string_view severity = name_of(rule->severity);
    if (as_json) {
      array.element({{"rule", rule->name}, {"severity", severity}, {"summary", rule->summary}});
    } else {
      out.line("{:<24}  {:<7}  {}", rule->name, severity, rule->summary);
    }
  }
  if (as_json) array.finish();
}

void set_rules(check::LintSettings& settings, const std::vector<std::string>& names, bool is_on) {
  for (const std::string& name : names) {
    if (name != kAllRules) settings.set_on(rule_named(name), is_on);
    for (const check::Rule* const rule : check::all_rules())
      if (name == kAllRules) settings.set_on(*rule, is_on);
  }
}

// --- Files ---

/// The statements of a file.
struct Text {
  explicit Text(check::Source source)
      : document(check::read_document(std::move(source))), names(document) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  check::Document document;
  check::Names names;
};

/// A file, read both ways at once.
class LintedFile {
 public:
  LintedFile(const std::string& path, const std::string& bytes)
      : reading_(std::async(std::launch::async,
                            [&] { return std::make_unique<Text>(check::Source(path, bytes)); })),
        records(bytes),
        text_(reading_.get()) {}

  const check::Document& document() const { return text_->document; }
  const check::Names& names() const { return text_->names; }

 private:
  std::future<std::unique_ptr<Text>> reading_;

 public:
  const check::StrictReading records;

 private:
  std::unique_ptr<Text> text_;
};

/// @throws RequestError when it cannot be read, or is none of the library's own format
std::string read_bytes(const std::string& path) {
  if (!format_of_file(path).value_or(Format{}).is_own())
    throw RequestError("only DBC files can be linted: convert it first");
  try {
    std::string bytes = files::read_all(path.c_str());
    if (bytes.size() > check::Source::kLongest) throw RequestError("it has more than 4 GiB");
    return bytes;
  } catch (const std::system_error& error) {
    throw RequestError("cannot be read: " + utf8(error.code().message()));
  }
}

class Linter {
 public:
  Linter(const LintArguments& arguments, Output& out)
      : arguments_(arguments),
        out_(out),
        report_(make_report(arguments.findings.form(), out, sentence_of)) {}

  ExitCode run() {
    ExitCode code = kExitSuccess;
    for (const std::string& path : arguments_.paths) code = std::max(code, lint(path));
    report_->finish();
    return code;
  }

 private:
  ExitCode lint(const std::string& path) {
    const LintConfiguration& configuration = configuration_for(path);
    std::string bytes;
    try {
      bytes = read_bytes(path);
    } catch (const RequestError& error) {
      out_.flush();
      print_error(behind_path(path, escaped(error.what())));
      return kExitTrouble;
    }
    const LintedFile file(path, bytes);
    const std::uint64_t limit = arguments_.findings.max_errors;
    if (!file.records.is_accepted()) {
      show(file.document().source, check::diagnose(file.document(), limit));
      return kExitFailure;
    }
    const check::LintResult result = check::lint(file.document(), file.names(), file.records.view(),
                                                 configuration.settings, limit);
    show(file.document().source, result.findings);
    if (arguments_.findings.form() == FindingsForm::kText) print_summary(path, result);
    FindingsOptions options = arguments_.findings;
    if (!arguments_.has_fail_on) options.fail_on = configuration.fail_on.value_or(options.fail_on);
    return options.fail_with(result.findings) ? kExitFailure : kExitSuccess;
  }

  void show(const check::Source& source, const check::Findings& findings) {
    report_->add(source, findings);
    out_.flush();  // keeps the order where both outputs meet
    print_more(source, findings);
  }

  /// "FILE: 1 error, 3 notes".
  void print_summary(const std::string& path, const check::LintResult& result) {
    std::string text;
    for (const auto severity :
         {check::Severity::kError, check::Severity::kWarning, check::Severity::kNote}) {
      const std::uint64_t count = result.counts[static_cast<std::size_t>(severity)];
      if (count == 0) continue;
      text += text.empty() ? "" : ", ";
      text += counted(count, name_of(severity));
    }
    out_.line("{}: {}", escaped(path), text.empty() ? "no findings" : text);
  }

  /// The settings for a file: those of its configuration, then those of the command line.
  const LintConfiguration& configuration_for(const std::string& path) {
    std::string name = arguments_.configuration;
    if (name.empty() && !arguments_.no_configuration) name = nearest_configuration(path).string();
    const auto [found, is_new] = configurations_.try_emplace(name);
    if (is_new) {
      if (!name.empty()) found->second = read_configuration(name);
      set_rules(found->second.settings, arguments_.disabled, false);
      set_rules(found->second.settings, arguments_.enabled, true);
    }
    return found->second;
  }

  const LintArguments& arguments_;
  Output& out_;
  std::unique_ptr<FindingsReport> report_;
  std::map<std::string, LintConfiguration> configurations_;  ///< by their files
};

ExitCode run(const LintArguments& arguments, Output& out) {
  if (!arguments.explained.empty()) {
    out.raw(check::explanation_of(rule_named(arguments.explained)));
    return kExitSuccess;
  }
  if (arguments.list_rules) {
    list_rules(arguments.findings.json, out);
    return kExitSuccess;
  }
  return Linter(arguments, out).run();
}

void add_options(CLI::App& command, LintArguments& arguments) {
  command.add_option("FILE", arguments.paths, "Databases to look through")->option_text("...");
  command
      .add_option("--disable", arguments.disabled,
                  "Rules to leave out; \"all\" for all. May be given again")
      ->option_text("RULE")
      ->allow_extra_args(false);
  command
      .add_option("--enable", arguments.enabled,
                  "Rules to apply although a configuration or --disable leaves them out")
      ->option_text("RULE")
      ->allow_extra_args(false);
  CLI::Option* const configuration =
      command
          .add_option("--config", arguments.configuration,
                      "Configuration file; without it the nearest .zelk-lint.json, in the folder\n"
                      "of FILE or around it")
          ->option_text("FILE");
  command.add_flag("--no-config", arguments.no_configuration, "Read no configuration file")
      ->excludes(configuration);
  command.add_flag("--list-rules", arguments.list_rules, "List all rules, and end");
  command.add_option("--explain", arguments.explained, "Explain a rule, and end")
      ->option_text("RULE");
}

}  // namespace

void add_lint_command(CLI::App& app, Action& action, ExitCode& failure) {
  CLI::App* command = app.add_subcommand("lint", "Find what is wrong in files that can be read");
  command->footer(kLintExitCodes);
  const auto arguments = std::make_shared<LintArguments>();
  add_options(*command, *arguments);
  add_findings_options(*command, arguments->findings);
  command->callback([arguments, command, &action, &failure] {
    const bool needs_file = arguments->explained.empty() && !arguments->list_rules;
    if (needs_file && arguments->paths.empty()) throw CLI::RequiredError("FILE");
    arguments->has_fail_on = command->get_option("--fail-on")->count() > 0;
    failure = kExitTrouble;
    action = [arguments](Output& out) { return run(*arguments, out); };
  });
}

}  // namespace zelk::tool
