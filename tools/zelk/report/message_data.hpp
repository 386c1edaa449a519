/// \file
/// What the page shows of messages and their signals.

#ifndef ZELK_TOOL_REPORT_MESSAGE_DATA_HPP
#define ZELK_TOOL_REPORT_MESSAGE_DATA_HPP

#include <nlohmann/json.hpp>

#include "report/report_context.hpp"

namespace zelk::tool {

/// For a row of the table of messages in report.mustache.
nlohmann::json message_row(const ReportContext& context, const msgblk& message);

/// For message.mustache.
nlohmann::json message_section(const ReportContext& context, const msgblk& message);

}  // namespace zelk::tool

#endif
