#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "edit/database_editor.hpp"
#include "edit/read_back.hpp"
#include "edit/rounding.hpp"
#include "input/database.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct EditKind {
  const char* option;
  const char* type_names;  // of its words
  int word_count;
  const char* description;
  std::string (DatabaseEditor::*apply)(DatabaseEditor::Words);
};

constexpr EditKind kEditKinds[] = {
    {"--rename-message", "MESSAGE NAME", 2, "", &DatabaseEditor::rename_message},
    {"--rename-signal", "MESSAGE.SIGNAL NAME", 2, "", &DatabaseEditor::rename_signal},
    {"--rename-node", "NODE NAME", 2, "", &DatabaseEditor::rename_node},
    {"--set-comment", "OBJECT TEXT", 2, "An empty text removes the comment",
     &DatabaseEditor::set_comment},
    {"--set-attribute", "OBJECT ATTRIBUTE VALUE", 3, "The value of an ENUM is an item or its index",
     &DatabaseEditor::set_attribute},
    {"--reset-attribute", "OBJECT ATTRIBUTE", 2, "Gives the object the default again",
     &DatabaseEditor::reset_attribute},
    {"--delete-message", "MESSAGE", 1, "", &DatabaseEditor::delete_message},
    {"--delete-signal", "MESSAGE.SIGNAL", 1,
     "Also from groups; signals that it selects are always there then",
     &DatabaseEditor::delete_signal},
    {"--delete-node", "NODE", 1, "Also from what it sends, receives and accesses",
     &DatabaseEditor::delete_node},
};

struct Edit {
  const EditKind* kind;
  std::vector<std::string> words;
};

struct Arguments {
  std::string path;
  std::string output;  // empty for `path`
  bool dry_run = false;
  bool allow_rounding = false;
  std::vector<Edit> edits;  // in the order of the command line

  const std::string& target() const { return output.empty() ? path : output; }
};

/// Makes the edits one after the other, and tells what each did.
std::vector<std::string> apply_edits(const Arguments& arguments, DatabaseEditor& editor) {
  std::vector<std::string> told;
  for (const Edit& edit : arguments.edits) {
    try {
      std::vector<std::string> words = edit.words;
      told.push_back((editor.*edit.kind->apply)(words));
    } catch (const RequestError& error) {
      throw RequestError(fmt::format("{}: {}", edit.kind->option, error.what()));
    }
  }
  return told;
}

/// @throws RequestError when the database cannot be written
void write(const Arguments& arguments, ZelkWriteManager& manager, const OpenedDatabase& opened) {
  const HeldSignals held;
  if (!opened.database->IsPathEqual(arguments.path.c_str()))
    throw RequestError("somebody has changed the file meanwhile");
  const char* const path = arguments.output.empty() ? nullptr : arguments.output.c_str();
  zelk_clear_error_text();
  const ZelkError error = manager.WriteDatabase(opened.name, path);
  if (error != ZelkErrorOk) throw RequestError(write_complaint(error, *opened.database));
  tell_save_notes(*opened.database, arguments.target());
}

/// What edits leave behind must fit into a file; numbers that they do not touch must stay.
///
/// @param before  numbers that were rounded already when nothing had been edited
/// @throws RequestError
void check_result(const Arguments& arguments, const OpenedDatabase& opened,
                  const std::vector<Rounding>& before) {
  if (opened.database->SymbolsShortenedOnRead())
    throw RequestError(write_complaint(ZelkErrorNotWritten, *opened.database));
  const EncodedDatabase database = {*opened.database, opened.encoding};
  if (!arguments.allow_rounding) {
    std::vector<Rounding> untouched = roundings_of(database);
    std::erase_if(untouched, [&before](const Rounding& rounding) {
      return std::ranges::find(before, rounding) == before.end();
    });
    check_roundings(untouched, arguments.target(), false);
  }
  check_read_back(database, arguments.target());
}

ExitCode edit(const Arguments& arguments, Output& out) {
  ZelkWriteManager manager(static_cast<void*>(nullptr));
  const OpenedDatabase opened = open_and_report(manager, arguments.path);
  if (!opened.database) return kExitFailure;
  const std::string* place = &arguments.path;  // what a fault is about
  try {
    if (!manager.LockDatabase(opened.name, "it is being edited")) throw RequestError("locked");
    const std::vector<Rounding> roundings = roundings_of({*opened.database, opened.encoding});
    DatabaseEditor editor(manager, opened);
    const std::vector<std::string> told = apply_edits(arguments, editor);
    place = &arguments.target();
    check_result(arguments, opened, roundings);
    // An output that does not take the report ends the program here, with the file as it was.
    for (const std::string& line : told) out.line("{}", line);
    out.flush();
    if (!arguments.dry_run) write(arguments, manager, opened);
  } catch (const RequestError& error) {
    print_error(behind_path(*place, error.what()));
    return kExitFailure;
  }
  out.line("{} {}", escaped(*place), arguments.dry_run ? "not written" : "written");
  return kExitSuccess;
}

/// The edits in the order in which their options were given, whatever their kinds.
///
/// @throws CLI::RequiredError when there are none
std::vector<Edit> edits_of(const CLI::App& command,
                           const std::map<const CLI::Option*, const EditKind*>& kinds) {
  std::vector<Edit> edits;
  std::map<const CLI::Option*, std::size_t> used_words;
  for (const CLI::Option* option : command.parse_order()) {  // one entry for each word
    const auto kind = kinds.find(option);
    if (kind == kinds.end()) continue;
    const std::size_t position = used_words[option]++;
    if (position % static_cast<std::size_t>(kind->second->word_count) == 0)
      edits.push_back({kind->second, {}});
    edits.back().words.push_back(option->results()[position]);
  }
  if (edits.empty()) throw CLI::RequiredError("at least one edit");
  return edits;
}

}  // namespace

void add_edit_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "edit", "Rename, comment, set attributes and delete; all of it or nothing is written");
  command->footer(
      "Edits are made in the order given, each option as often as wanted. An OBJECT is network,\n"
      "node:NAME, message:MESSAGE, signal:MESSAGE.SIGNAL or variable:NAME; a MESSAGE a name or an\n"
      "identifier, decimal or hexadecimal behind 0x. The file is written once, and only when all\n"
      "edits can be made.\n\n" +
      command->get_footer());
  const auto arguments = std::make_shared<Arguments>();
  command->add_option("FILE", arguments->path, "Database to edit")
      ->required()
      ->option_text(" ")
      ->check(fault_of_other_format);
  command
      ->add_option("--output", arguments->output,
                   "File to write in its place; one that is there is replaced")
      ->type_name("OUT")
      ->check(fault_of_other_format);
  command->add_flag("-n,--dry-run", arguments->dry_run, "Only tells what would change");
  command->add_flag("--allow-rounding", arguments->allow_rounding,
                    "Write although numbers that are not edited have more digits than the 14\n"
                    "that a file keeps, and are rounded");
  std::map<const CLI::Option*, const EditKind*> kinds;
  const auto keep_results = [](const std::vector<std::string>&) {};  // `edits_of` asks for them
  for (const EditKind& kind : kEditKinds) {
    CLI::Option* const option = command->add_option_function<std::vector<std::string>>(
        kind.option, keep_results, kind.description);
    option->type_size(kind.word_count)
        ->allow_extra_args(false)
        ->option_text(kind.type_names)
        ->group(
            "Edits, each as often as wanted. OBJECT: network, node:NAME, message:NAME, "
            "signal:MESSAGE.SIGNAL or variable:NAME. MESSAGE: a name or an identifier");
    kinds[option] = &kind;
  }
  command->callback([command, kinds, arguments, &action] {
    arguments->edits = edits_of(*command, kinds);
    action = [arguments](Output& out) { return edit(*arguments, out); };
  });
}

}  // namespace zelk::tool
