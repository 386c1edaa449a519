/// \file
/// What differs between two databases, as a page.

#ifndef ZELK_TOOL_REPORT_CHANGES_PAGE_HPP
#define ZELK_TOOL_REPORT_CHANGES_PAGE_HPP

#include <string>

#include "base/encoded_database.hpp"

namespace zelk::tool {

/// A database and what it is called: the name of its file, in UTF-8.
struct NamedDatabase {
  EncodedDatabase database;
  std::string name;
};

/// Added, removed and changed objects; messages with their layouts in both databases side by side.
/// Texts are cut after some thousand characters.
std::string changes_page(const NamedDatabase& before, const NamedDatabase& after);

}  // namespace zelk::tool

#endif
