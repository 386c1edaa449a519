#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "commands/commands.hpp"
#include "input/database_set.hpp"
#include "input/j1939.hpp"
#include "input/lookup.hpp"
#include "input/name_filter.hpp"
#include "table/objects.hpp"
#include "table/rows.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// What is looked for: one of the three.
struct Query {
  std::optional<std::string> object;  // name, or identifier of a message
  std::optional<std::string> group;   // parameter group number
  std::optional<std::string> frame;   // identifier of a J1939 frame

  bool is_by_group() const { return group || frame; }
};

struct Arguments {
  Query query;
  std::vector<std::string> words;  // of the command line, the files among them
  bool json = false;
};

struct Hit {
  const DatabaseSet::Entry* database;
  const ObjectKind* kind;
  Object object;
};

using Matches = std::function<bool(const ObjectKind&, const Object&)>;

/// The message of an object; null for other kinds.
const msgblk* message_of(const ObjectKind& kind, const Object& object) {
  return kind.attribute_type == ZELK_OBJ_MESSAGE ? static_cast<const msgblk*>(object.record)
                                                 : nullptr;
}

Matches matches_name(const std::string& wanted) {
  const std::optional<std::uint32_t> id = parse_id(wanted);
  return [wanted, id](const ObjectKind& kind, const Object& object) {
    if (matches_object(wanted, object.name_text(), object.owner_text())) return true;
    const msgblk* const message = message_of(kind, object);
    return id && message && (message->id == *id || message->id == (*id | ZELK_ID_EXTENDED));
  };
}

Matches matches_group(const ZelkDatabase& database, std::uint32_t group) {
  return [j1939 = J1939(database), group](const ObjectKind& kind, const Object& object) {
    const msgblk* const message = message_of(kind, object);
    return message && j1939.group_number(*message) == without_destination(group);
  };
}

/// The lookup takes 11-bit identifiers for those of frames as well, which no J1939 frame has.
Matches matches_frame(const ZelkDatabase& database, std::uint32_t id) {
  const msgblk* const message = database.GetJ1939Message(id | ZELK_ID_EXTENDED, 0);
  const bool is_frame = message && (message->id & ZELK_ID_EXTENDED);
  return [message, is_frame](const ObjectKind&, const Object& object) {
    return is_frame && object.record == message;
  };
}

/// The numbers have been checked.
Matches matches_in(const ZelkDatabase& database, const Query& query) {
  if (query.group) return matches_group(database, parse_id(*query.group).value());
  if (query.object) return matches_name(*query.object);
  return matches_frame(database, parse_id(*query.frame).value());
}

std::vector<Hit> find_all(const DatabaseSet& databases, const Query& query) {
  std::vector<Hit> hits;
  for (const DatabaseSet::Entry& entry : databases.databases()) {
    const Matches matches = matches_in(entry.texts.records, query);
    for (const ObjectKind& kind : object_kinds()) {
      if (!kind.is_named) continue;
      kind.for_each(entry.texts, [&](const Object& object) {
        if (matches(kind, object)) hits.push_back({&entry, &kind, object});
      });
    }
  }
  return hits;
}

void tell_nothing_found(const DatabaseSet& databases, const Query& query) {
  if (query.is_by_group()) {
    const std::uint32_t number = parse_id(query.group ? *query.group : *query.frame).value();
    return print_error(fmt::format("zelk: no message is of the {} 0x{:X} ({})",
                                   query.group ? "parameter group" : "J1939 frame", number,
                                   number));
  }
  if (const std::optional<std::uint32_t> id = parse_id(*query.object))
    return print_error(fmt::format("zelk: no message has the identifier 0x{:X} ({})", *id, *id));
  NameSuggestion names(*query.object);
  for (const DatabaseSet::Entry& entry : databases.databases()) {
    for (const ObjectKind& kind : object_kinds()) {
      kind.for_each(entry.texts, [&](const Object& object) {
        names.add(object.name_text(), object.owner_text());
      });
    }
  }
  print_error(fmt::format("zelk: nothing is named {}{}", in_quotes(*query.object), names.text()));
}

/// "powertrain: message VehicleMotion: id 0x141, format 11-bit, ..."; without what is empty.
void tell(const Hit& hit, Output& out) {
  std::string details;
  std::vector<Cell> cells;
  hit.kind->append_cells(hit.object, cells);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string_view heading = hit.kind->headings[i];
    const std::string value = shown(cells[i]);
    if (heading != "name" && !value.empty())
      details += fmt::format("{} {} {}", details.empty() ? ":" : ",", heading, value);
  }
  out.line("{}: {} {}{}", escaped(hit.database->name), hit.kind->singular,
           escaped(hit.object.name_text()), details);
}

Json json_of(const Hit& hit) {
  Json object;
  object["database"] = hit.database->name;
  object["kind"] = hit.kind->singular;
  std::vector<Cell> cells;
  hit.kind->append_cells(hit.object, cells);
  for (std::size_t i = 0; i < cells.size(); ++i)
    object[std::string(hit.kind->headings[i])] = cells[i].value;
  return object;
}

void tell_as_json(const std::vector<Hit>& hits, Output& out) {
  JsonArray array(out);
  for (const Hit& hit : hits) array.element(json_of(hit));
  array.finish();
}

ExitCode find(const Query& query, const std::vector<std::string>& paths, bool json, Output& out) {
  DatabaseSet databases;
  const bool all = databases.open(paths);
  if (databases.databases().empty()) return kExitFailure;
  const std::vector<Hit> hits = find_all(databases, query);
  if (hits.empty()) tell_nothing_found(databases, query);
  if (json) {
    tell_as_json(hits, out);
  } else {
    for (const Hit& hit : hits) tell(hit, out);
  }
  return all && !hits.empty() ? kExitSuccess : kExitFailure;
}

/// Takes the object off the words, unless a group is looked for; what is left are the files.
///
/// @throws CLI::RequiredError when there are none
void part_words(Arguments& arguments) {
  std::vector<std::string>& words = arguments.words;
  if (!arguments.query.is_by_group()) {
    arguments.query.object = words.front();
    words.erase(words.begin());
  }
  if (words.empty()) throw CLI::RequiredError("FILE");
}

/// Accepts whole numbers up to `largest`.
CLI::Validator number_up_to(std::uint32_t largest) {
  const auto check = [largest](const std::string& text) {
    const std::optional<std::uint32_t> number = parse_id(text);
    if (number && *number <= largest) return std::string();
    return fmt::format("{} is no number from 0 to 0x{:X}", in_quotes(text), largest);
  };
  return CLI::Validator(check, "");
}

}  // namespace

void add_find_command(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("find", "Tell in which databases there is an object");
  const auto arguments = std::make_shared<Arguments>();
  command
      ->add_option("OBJECT FILE", arguments->words,
                   "Name of an object of any kind, of signals and groups also MESSAGE.NAME, in\n"
                   "which * stands for any characters and ? for one; or identifier of a message,\n"
                   "decimal or hexadecimal behind 0x, with or without bit 31 for an extended\n"
                   "frame; and the databases to read. With --pgn and --j1939 there is no OBJECT.")
      ->required()
      ->option_text("...");
  CLI::Option* const group =
      command
          ->add_option("--pgn", arguments->query.group,
                       "Finds the messages of this J1939 parameter group number instead")
          ->type_name("N")
          ->check(number_up_to(kLargestGroupNumber));
  command
      ->add_option("--j1939", arguments->query.frame,
                   "Finds the message that describes the J1939 frame with this identifier")
      ->type_name("ID")
      ->check(number_up_to(0xFFFFFFFF))
      ->excludes(group);
  command->add_flag("--json", arguments->json, "An array of JSON objects, one in a line");
  command->callback([arguments, &action] {
    part_words(*arguments);
    action = [arguments](Output& out) {
      return find(arguments->query, arguments->words, arguments->json, out);
    };
  });
}

}  // namespace zelk::tool
