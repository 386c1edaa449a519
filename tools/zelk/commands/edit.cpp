#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.hpp"
#include "edit/edit_file.hpp"
#include "input/formats.hpp"

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
    {"--rename-variable", "VARIABLE NAME", 2, "", &DatabaseEditor::rename_variable},
    {"--set", "OBJECT PROPERTY VALUE", 3,
     "Of a signal: factor, offset, minimum, maximum, unit, start, length,\n"
     "order (intel, motorola), sign (unsigned, signed), receivers (A,B or none),\n"
     "multiplexing (none, M, m3, 3-5,7 or MULTIPLEXOR=3); of a message: id,\n"
     "length, senders (A,B or none); of the network: version",
     &DatabaseEditor::set_property},
    {"--set-comment", "OBJECT TEXT", 2, "An empty text removes the comment",
     &DatabaseEditor::set_comment},
    {"--set-attribute", "OBJECT ATTRIBUTE VALUE", 3, "The value of an ENUM is an item or its index",
     &DatabaseEditor::set_attribute},
    {"--reset-attribute", "OBJECT ATTRIBUTE", 2, "Gives the object the default again",
     &DatabaseEditor::reset_attribute},
    {"--set-description", "OBJECT NUMBER TEXT", 3,
     "Describes a value of a signal, a variable or a table (table:NAME)",
     &DatabaseEditor::set_description},
    {"--add-node", "NAME", 1, "", &DatabaseEditor::add_node},
    {"--add-message", "NAME ID LENGTH", 3, "An ID above 0x7FF has 29 bits",
     &DatabaseEditor::add_message},
    {"--add-signal", "MESSAGE.SIGNAL START LENGTH", 3,
     "In bits: an unsigned Intel signal, until --set makes it another one",
     &DatabaseEditor::add_signal},
    {"--add-attribute", "KIND NAME TYPE DEFAULT", 4,
     "KIND: network, node, message, signal, variable. TYPE: \"INT 0 100\",\n"
     "\"HEX 0 255\", \"FLOAT 0 1\", STRING, \"ENUM off,on\"",
     &DatabaseEditor::add_attribute},
    {"--add-table", "NAME", 1, "", &DatabaseEditor::add_table},
    {"--delete-message", "MESSAGE", 1, "", &DatabaseEditor::delete_message},
    {"--delete-signal", "MESSAGE.SIGNAL", 1,
     "Also from groups; signals that it selects are always there then",
     &DatabaseEditor::delete_signal},
    {"--delete-node", "NODE", 1, "Also from what it sends, receives and accesses",
     &DatabaseEditor::delete_node},
    {"--delete-description", "OBJECT NUMBER", 2, "", &DatabaseEditor::delete_description},
    {"--delete-attribute", "KIND NAME", 2, "The definition, with all values",
     &DatabaseEditor::delete_attribute},
    {"--delete-table", "NAME", 1, "Also from signal types", &DatabaseEditor::delete_table},
};

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
      edits.push_back({kind->second->option, kind->second->apply, {}});
    edits.back().words.push_back(option->results()[position]);
  }
  if (edits.empty()) throw CLI::RequiredError("at least one edit");
  return edits;
}

}  // namespace

void add_edit_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand(
      "edit", "Add, change, rename and delete, and leave the rest of the file as it is");
  command->footer(
      "Edits are made in the order given, each option as often as wanted. An OBJECT is network,\n"
      "node:NAME, message:MESSAGE, signal:MESSAGE.SIGNAL or variable:NAME; a MESSAGE a name or an\n"
      "identifier, decimal or hexadecimal behind 0x. The file is written once, and only when all\n"
      "edits can be made.\n\n" +
      command->get_footer());
  const auto arguments = std::make_shared<FileEdits>();
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
  CLI::Option* const diff = command->add_flag("--diff", arguments->shows_diff,
                                              "Prints the lines that change, as a unified diff");
  command
      ->add_flag("--canonical", arguments->is_canonical,
                 "Writes all of the file in the library's own order and form")
      ->excludes(diff);
  command->add_flag(
      "--allow-rounding", arguments->allow_rounding,
      "With --canonical: write although numbers that are not edited have more digits\n"
      "than the 14 that this form keeps, and are rounded");
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
    action = [arguments](Output& out) {
      return edit_file(*arguments, out) ? kExitSuccess : kExitFailure;
    };
  });
}

}  // namespace zelk::tool
