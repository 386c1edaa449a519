#include <filesystem>

#include "growth/measuring.hpp"
#include "growth/operations.hpp"

namespace zelk::bench {
namespace {

/// A command whose arguments `IN`, `OTHER` and `OUT` are paths of the input.
Operation command(std::vector<std::string> words) {
  std::string name;
  for (const std::string& word : words) name += (name.empty() ? "" : " ") + word;
  return {name, [words = std::move(words)](const Input& input) {
            std::vector<std::string> arguments = {input.program};
            for (const std::string& word : words) {
              if (word == "IN") {
                arguments.push_back(input.database);
              } else if (word == "OTHER") {
                arguments.push_back(input.other);
              } else if (word.starts_with("OUT")) {
                arguments.push_back(input.out + word.substr(3));
              } else {
                arguments.push_back(word);
              }
            }
            return seconds_of(arguments);
          }};
}

/// The way back from another format; the way there is not measured.
Operation import_from(const std::string& extension) {
  return {"convert IN" + extension + " OUT.dbc", [extension](const Input& input) {
            const std::string between = input.database + extension;
            if (!std::filesystem::exists(between))
              seconds_of({input.program, "convert", input.database, between});
            if (!std::filesystem::exists(between)) return 0.0;
            return seconds_of({input.program, "convert", between, input.out + ".dbc"});
          }};
}

}  // namespace

std::vector<Operation> database_commands() {
  std::vector<Operation> commands = {
      command({"check", "IN"}),
      command({"lint", "IN", "--max-errors", "0"}),
      command({"show", "IN"}),
      command({"diff", "IN", "OTHER"}),
      command({"diff", "IN", "IN"}),
      command({"rewrite", "IN", "OUT"}),
      command({"repair", "IN", "OUT"}),
      command({"edit", "IN", "--output", "OUT", "--add-node", "Fresh", "--set-comment", "network",
               "x"}),
      command({"convert", "IN", "OUT.json"}),
      import_from(".json"),
      command({"convert", "IN", "OUT.kcd"}),
      import_from(".kcd"),
      command({"report", "IN", "-o", "OUT.html"}),
      command({"report", "IN", "OTHER", "-o", "OUT.html"}),
      command({"find", "IN", "M"}),
  };
  for (const char* kind : {"nodes", "messages", "signals", "groups", "variables", "tables", "types",
                           "categories", "attributes", "values", "descriptions"})
    commands.push_back(command({"list", kind, "IN"}));
  commands.push_back(command({"list", "signals", "IN", "--attribute", "A", "--comments"}));
  return commands;
}

std::vector<Operation> repair_commands() {
  return {command({"check", "IN", "--max-errors", "0"}), command({"repair", "IN", "OUT"})};
}

std::vector<Operation> log_commands() {
  return {
      command({"decode", "IN", "OTHER", "--stats"}),
      command({"decode", "IN", "OTHER", "--j1939-tp", "--match-pgn", "--format", "json"}),
      command({"decode", "IN", "OTHER", "--wide", "-o", "OUT/"}),
      command({"decode", "IN", "OTHER", "--wide", "--signal", "S", "--every", "1s", "-o", "OUT"}),
      command({"log", "OTHER", "-o", "OUT", "--stats"}),
      command({"log", "OTHER", "OTHER", "-o", "OUT", "--times", "points"}),
      command({"plot", "IN", "OTHER", "S", "W", "-o", "OUT.svg"}),
      command({"plot", "IN", "OTHER", "S", "-o", "OUT.html", "--jitter", "M"}),
      command({"monitor", "IN", "--replay", "OTHER", "--once"}),
  };
}

}  // namespace zelk::bench
