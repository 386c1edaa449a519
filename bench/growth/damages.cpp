#include <algorithm>
#include <sstream>

#include "growth/shapes.hpp"

namespace zelk::bench {
namespace {

std::vector<std::string> lines_of(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line + '\n');
  return lines;
}

/// What `change(text, line)` appends for all lines.
template <typename Change>
std::string changed(const std::string& database, const Change& change) {
  std::string text;
  for (const std::string& line : lines_of(database)) change(text, line);
  return text;
}

}  // namespace

std::vector<Damage> damages() {
  return {
      {"lines in reverse",
       [](const std::string& database) {
         std::vector<std::string> lines = lines_of(database);
         std::string text;
         for (; !lines.empty(); lines.pop_back()) text += lines.back();
         return text;
       }},
      {"lines twice",
       [](const std::string& database) {
         return changed(database,
                        [](std::string& t, const std::string& line) { t += line + line; });
       }},
      {"without messages, nodes and definitions",
       [](const std::string& database) {
         return changed(database, [](std::string& t, const std::string& line) {
           const bool is_lost = line.starts_with("BO_ ") || line.starts_with("BU_:") ||
                                line.starts_with("BA_DEF") || line.starts_with("EV_ ");
           t += is_lost ? "\n" : line;
         });
       }},
      {"without semicolons and colons",
       [](const std::string& database) {
         std::string text = database;
         std::replace_if(
             text.begin(), text.end(), [](char c) { return c == ';' || c == ':'; }, ' ');
         return text;
       }},
      {"without the first quote of lines",
       [](const std::string& database) {
         return changed(database, [](std::string& t, const std::string& line) {
           const std::size_t quote = line.find('"');
           t += quote == std::string::npos ? line : std::string(line).erase(quote, 1);
         });
       }},
      {"names with a digit in front",
       [](const std::string& database) {
         return changed(database, [](std::string& t, const std::string& line) {
           const std::size_t blank = line.find(' ', line.starts_with("BO_ ") ? 4 : 1);
           t += blank == std::string::npos ? line : std::string(line).insert(blank + 1, "2-");
         });
       }},
      {"in one line",
       [](const std::string& database) {
         std::string text = database;
         std::replace(text.begin(), text.end(), '\n', ' ');
         return text;
       }},
  };
}

}  // namespace zelk::bench
