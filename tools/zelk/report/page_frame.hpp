/// \file
/// What all pages of the report have around their content.

#ifndef ZELK_TOOL_REPORT_PAGE_FRAME_HPP
#define ZELK_TOOL_REPORT_PAGE_FRAME_HPP

#include <nlohmann/json.hpp>
#include <string>

namespace zelk::tool {

struct PageFrame {
  std::string title;
  /// Objects with "element", an identifier in the page, "heading", and "count", which may be null.
  nlohmann::json contents = nlohmann::json::array();
  std::string main;  ///< HTML
};

/// A page that needs no other file: with its style, its scripts and the switch of colours.
std::string framed_page(const PageFrame& frame);

}  // namespace zelk::tool

#endif
