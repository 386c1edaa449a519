#include "table/listing.hpp"

#include <algorithm>
#include <string_view>

#include "base/enum_items.hpp"
#include "base/name_filter.hpp"
#include "base/wildcards.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Calls `visit` for each object of a database whose name is wanted.
template <typename Visit>
void for_each_wanted(const Listing& listing, EncodedDatabase database, const Visit& visit) {
  const auto cased = [&listing](const std::string& name) {
    return listing.ignore_case ? lowered(name) : name;
  };
  std::vector<std::string> patterns;
  for (const std::string& pattern : listing.patterns) patterns.push_back(cased(pattern));
  listing.kind->for_each(database, [&](const Object& object) {
    if (patterns.empty()) return visit(object);
    const std::string name = cased(object.name_text());
    const std::string owner = cased(object.owner_text());
    const auto matches = [&](const std::string& pattern) {
      return matches_object(pattern, name, owner);
    };
    if (std::ranges::any_of(patterns, matches)) visit(object);
  });
}

std::vector<std::string> headings_of(const Listing& listing) {
  std::vector<std::string> headings;
  if (listing.database_names) headings.emplace_back("database");
  headings.insert(headings.end(), listing.kind->headings.begin(), listing.kind->headings.end());
  headings.insert(headings.end(), listing.attributes.begin(), listing.attributes.end());
  if (listing.comments) headings.emplace_back("comment");
  return headings;
}

void list_database(const Listing& listing, const DatabaseSet::Entry& entry, RowWriter& writer) {
  const IndexedEnumItems items;
  std::vector<const attr_def*> definitions;
  for (const std::string& name : listing.attributes)
    definitions.push_back(find_definition(entry.texts, *listing.kind->attribute_type, name));

  std::vector<Cell> cells;
  for_each_wanted(listing, entry.texts, [&](const Object& object) {
    cells.clear();
    if (listing.database_names) cells.push_back(text(entry.name));
    listing.kind->append_cells(object, cells);
    for (const attr_def* definition : definitions)
      cells.push_back(in_utf8(effective_value(object.attributes, definition), object.encoding));
    if (listing.comments) cells.push_back(object.comment_cell());
    writer.row(cells);
  });
}

}  // namespace

bool check_attributes(const Listing& listing, const DatabaseSet& databases) {
  const ObjectKind& kind = *listing.kind;
  bool all = true;
  for (const std::string& name : listing.attributes) {
    NameSuggestion names(name);
    const auto is_defined = [&](const DatabaseSet::Entry& entry) {
      return find_definition(entry.texts, *kind.attribute_type, name, &names) != nullptr;
    };
    if (std::ranges::any_of(databases.databases(), is_defined)) continue;
    print_error(
        fmt::format("zelk: {} have no attribute {}{}", kind.plural, in_quotes(name), names.text()));
    all = false;
  }
  return all;
}

std::size_t count_objects(const Listing& listing, const DatabaseSet& databases) {
  std::size_t count = 0;
  for (const DatabaseSet::Entry& entry : databases.databases())
    for_each_wanted(listing, entry.texts, [&](const Object&) { ++count; });
  return count;
}

void list_objects(const Listing& listing, const DatabaseSet& databases, MakeRows* make_rows,
                  Output& out) {
  const std::unique_ptr<RowWriter> writer = make_rows(headings_of(listing), out);
  for (const DatabaseSet::Entry& entry : databases.databases())
    list_database(listing, entry, *writer);
  writer->finish();
}

}  // namespace zelk::tool
