#include "report/page_frame.hpp"

#include <string_view>

#include "page/page.hpp"
#include "report/texts.hpp"

namespace zelk::tool {

namespace {

std::string joined(std::initializer_list<std::string_view> texts) {
  std::string result;
  for (const std::string_view text : texts) result += text;
  return result;
}

}  // namespace

std::string framed_page(const PageFrame& frame) {
  using namespace report_texts;
  return render(page_mustache, {{"version", ZELK_TOOL_VERSION},
                                {"title", frame.title},
                                {"style", joined({report_css, layout_css, changes_css})},
                                {"script", joined({report_js, layout_js, changes_js})},
                                {"contents", frame.contents},
                                {"main", frame.main}});
}

}  // namespace zelk::tool
