/// \file
/// What the page shows of the signals of a message.

#ifndef ZELK_TOOL_REPORT_SIGNAL_DATA_HPP
#define ZELK_TOOL_REPORT_SIGNAL_DATA_HPP

#include <nlohmann/json.hpp>

#include "report/report_context.hpp"

namespace zelk::tool {

/// The signals of message.mustache, in their order.
nlohmann::json signals_data(const ReportContext& context, const msgblk& message);

}  // namespace zelk::tool

#endif
