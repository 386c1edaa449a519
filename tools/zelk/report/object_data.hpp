/// \file
/// What the page shows of nodes and of all else that is no message.

#ifndef ZELK_TOOL_REPORT_OBJECT_DATA_HPP
#define ZELK_TOOL_REPORT_OBJECT_DATA_HPP

#include <nlohmann/json.hpp>

#include "report/report_context.hpp"

namespace zelk::tool {

// Lists for report.mustache, in the order of the database.

nlohmann::json nodes_data(const ReportContext& context);
nlohmann::json variables_data(const ReportContext& context);
nlohmann::json tables_data(const ReportContext& context);
nlohmann::json types_data(const ReportContext& context);
nlohmann::json definitions_data(const ReportContext& context);
nlohmann::json categories_data(const ReportContext& context);

/// How many messages each sender sends to each receiver: {"is_table": true, "columns": [node],
/// "rows": [{node, "cells": [{"count"}]}]}. With very many nodes that is {"is_table": false,
/// "lists": [{node, "to": [{node, "count"}], "more"}]}. Null without any pair.
nlohmann::json matrix_data(const ReportContext& context);

}  // namespace zelk::tool

#endif
