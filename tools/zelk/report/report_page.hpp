/// \file
/// A database as a page.

#ifndef ZELK_TOOL_REPORT_REPORT_PAGE_HPP
#define ZELK_TOOL_REPORT_REPORT_PAGE_HPP

#include <string>

#include "base/encoded_database.hpp"

namespace zelk::tool {

/// All that a database says, in HTML: one page that needs no other file.
///
/// @param name  of the database, in UTF-8: that of its file
std::string report_page(EncodedDatabase database, const std::string& name);

}  // namespace zelk::tool

#endif
