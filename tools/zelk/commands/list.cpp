#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/commands.hpp"
#include "input/database_set.hpp"
#include "input/lookup.hpp"
#include "input/name_filter.hpp"
#include "table/attribute_cells.hpp"
#include "table/objects.hpp"
#include "table/rows.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct Arguments {
  std::string kind;
  std::vector<std::string> paths;
  std::vector<std::string> patterns;
  std::vector<std::string> attributes;
  bool ignore_case = false;
  bool comments = false;
  bool count = false;
  bool json = false;
  bool csv = false;

  RowFormat format() const {
    return json ? RowFormat::kJson : csv ? RowFormat::kCsv : RowFormat::kTable;
  }
};

/// The choice of objects by name.
class ObjectFilter {
 public:
  explicit ObjectFilter(const Arguments& arguments)
      : patterns_(arguments.patterns), ignore_case_(arguments.ignore_case) {
    if (ignore_case_) std::ranges::transform(patterns_, patterns_.begin(), lowered);
  }

  bool takes(const Object& object) const {
    if (patterns_.empty()) return true;
    std::string name = object.name_text();
    std::string owner = object.owner_text();
    if (ignore_case_) {
      name = lowered(name);
      owner = lowered(owner);
    }
    return std::ranges::any_of(patterns_, [&](const std::string& pattern) {
      return matches_object(pattern, name, owner);
    });
  }

 private:
  std::vector<std::string> patterns_;
  bool ignore_case_;
};

/// One listing.
class Lister {
 public:
  Lister(const Arguments& arguments, const ObjectKind& kind, const DatabaseSet& databases)
      : arguments_(arguments),
        kind_(kind),
        databases_(databases.databases()),
        has_names_(arguments.paths.size() > 1),
        filter_(arguments) {}

  /// Tells on standard error of attributes that no database defines for the kind.
  ///
  /// @return whether there are none
  bool check_attributes() const {
    bool all = true;
    for (const std::string& name : arguments_.attributes) all &= check_attribute(name);
    return all;
  }

  void count(Output& out) const {
    std::size_t number = 0;
    for (const DatabaseSet::Entry& entry : databases_)
      for_each_taken(entry.texts, [&](const Object&) { ++number; });
    out.line("{}", number);
  }

  void list(Output& out) const {
    const std::unique_ptr<RowWriter> writer = make_row_writer(arguments_.format(), headings(), out);
    for (const DatabaseSet::Entry& entry : databases_) list(entry, *writer);
    writer->finish();
  }

 private:
  bool check_attribute(const std::string& name) const {
    NameSuggestion names(name);
    for (const DatabaseSet::Entry& entry : databases_)
      if (find_definition(entry.texts, *kind_.attribute_type, name, &names)) return true;
    print_error(fmt::format("zelk: {} have no attribute {}{}", kind_.plural, in_quotes(name),
                            names.text()));
    return false;
  }

  template <typename Visit>
  void for_each_taken(EncodedDatabase database, const Visit& visit) const {
    kind_.for_each(database, [&](const Object& object) {
      if (filter_.takes(object)) visit(object);
    });
  }

  std::vector<std::string> headings() const {
    std::vector<std::string> headings;
    if (has_names_) headings.emplace_back("database");
    headings.insert(headings.end(), kind_.headings.begin(), kind_.headings.end());
    headings.insert(headings.end(), arguments_.attributes.begin(), arguments_.attributes.end());
    if (arguments_.comments) headings.emplace_back("comment");
    return headings;
  }

  void list(const DatabaseSet::Entry& entry, RowWriter& writer) const {
    std::vector<const attr_def*> definitions;
    for (const std::string& name : arguments_.attributes)
      definitions.push_back(find_definition(entry.texts, *kind_.attribute_type, name));

    std::vector<Cell> cells;
    for_each_taken(entry.texts, [&](const Object& object) {
      cells.clear();
      if (has_names_) cells.push_back(text(entry.name));
      kind_.append_cells(object, cells);
      for (const attr_def* definition : definitions)
        cells.push_back(in_utf8(effective_value(object.attributes, definition), object.encoding));
      if (arguments_.comments) {
        const Cell comment = object.comment ? text(object.comment) : none();
        cells.push_back(in_utf8(comment, object.encoding));
      }
      writer.row(cells);
    });
  }

  const Arguments& arguments_;
  const ObjectKind& kind_;
  const std::vector<DatabaseSet::Entry>& databases_;
  bool has_names_;
  ObjectFilter filter_;
};

const ObjectKind& kind_named(std::string_view plural) {
  return *std::ranges::find(object_kinds(), plural, &ObjectKind::plural);
}

ExitCode list(const Arguments& arguments, Output& out) {
  DatabaseSet databases;
  const bool all = databases.open(arguments.paths);
  if (databases.databases().empty()) return kExitFailure;
  const Lister lister(arguments, kind_named(arguments.kind), databases);
  if (!lister.check_attributes()) return kExitFailure;
  if (arguments.count) {
    lister.count(out);
  } else {
    lister.list(out);
  }
  return all ? kExitSuccess : kExitFailure;
}

/// @throws CLI::ValidationError when the kind does not have what is asked for
void check_columns(const Arguments& arguments) {
  const ObjectKind& kind = kind_named(arguments.kind);
  if (!arguments.attributes.empty() && !kind.attribute_type)
    throw CLI::ValidationError("--attribute", fmt::format("{} have no attributes", kind.plural));
  if (arguments.comments && !kind.has_comments)
    throw CLI::ValidationError("--comments", fmt::format("{} have no comments", kind.plural));
}

std::vector<std::string> kind_names() {
  std::vector<std::string> names;
  for (const ObjectKind& kind : object_kinds()) names.emplace_back(kind.plural);
  return names;
}

void add_column_options(CLI::App& command, Arguments& arguments) {
  command
      .add_option("--attribute", arguments.attributes,
                  "Adds a column with the values of this attribute, the default where an object\n"
                  "has none of its own; may be given several times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command.add_flag("--comments", arguments.comments, "Adds a column with the comments");
}

void add_form_options(CLI::App& command, Arguments& arguments) {
  CLI::Option* const json = command.add_flag(
      "--json", arguments.json, "An array of JSON objects in place of a table, one in a line");
  command.add_flag("--csv", arguments.csv, "CSV (RFC 4180) in place of a table")->excludes(json);
  command.add_flag("--count", arguments.count, "Only the number of rows");
}

}  // namespace

void add_list_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("list", "List all objects of a kind, one in a row");
  const auto arguments = std::make_shared<Arguments>();
  command
      ->add_option("KIND", arguments->kind,
                   fmt::format("What to list:\n{}", fmt::join(kind_names(), ", ")))
      ->required()
      ->option_text(" ")
      ->check(CLI::IsMember(kind_names()).description(""));
  command
      ->add_option("FILE", arguments->paths,
                   "Databases to read; of several, each row begins with its database's name")
      ->required()
      ->option_text("...");
  command
      ->add_option("--where", arguments->patterns,
                   "Only objects of this name, in which * stands for any characters and ? for\n"
                   "one; of signals and groups also of \"Message.Name\"; of values and\n"
                   "descriptions that of the attribute, signal or variable; may be given several\n"
                   "times")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command->add_flag("-i,--ignore-case", arguments->ignore_case,
                    "Names match whatever the case of their letters");
  add_column_options(*command, *arguments);
  add_form_options(*command, *arguments);
  command->callback([arguments, &action] {
    check_columns(*arguments);
    action = [arguments](Output& out) { return list(*arguments, out); };
  });
}

}  // namespace zelk::tool
