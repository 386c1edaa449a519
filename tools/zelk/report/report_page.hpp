/// \file
/// A database as a page.

#ifndef ZELK_TOOL_REPORT_REPORT_PAGE_HPP
#define ZELK_TOOL_REPORT_REPORT_PAGE_HPP

#include <string>

#include "base/encoded_database.hpp"
#include "report/bus_load.hpp"
#include "report/file_findings.hpp"

namespace zelk::tool {

/// All that a database says, in HTML: one page that needs no other file. Time is linear in the size
/// of the database; of a very large one the page shows the first messages, and says so.
///
/// @param name      of the database, in UTF-8: that of its file
/// @param findings  in it
/// @param rates     of which the messages take a part
std::string report_page(EncodedDatabase database, const std::string& name,
                        const FileFindings& findings, const BitRates& rates);

}  // namespace zelk::tool

#endif
