/// \file
/// What the page shows of the signals of a message.

#ifndef ZELK_TOOL_REPORT_SIGNAL_DATA_HPP
#define ZELK_TOOL_REPORT_SIGNAL_DATA_HPP

#include <nlohmann/json.hpp>
#include <string>

#include "report/report_context.hpp"

namespace zelk::tool {

/// The signals of message.mustache, in their order.
nlohmann::json signals_data(const ReportContext& context, const msgblk& message);

/// Takes the coding that most signals have, which the table's heading states, out of them; empty
/// when there are none.
std::string take_usual_coding(nlohmann::json& signals);

}  // namespace zelk::tool

#endif
