#include "report/page_frame.hpp"

#include <initializer_list>
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
  namespace texts = report_texts;
  return render(texts::page_mustache,
                {{"version", ZELK_TOOL_VERSION},
                 {"title", frame.title},
                 {"style", joined({texts::report_css, texts::layout_css, texts::changes_css})},
                 {"script", joined({texts::report_js, texts::layout_js, texts::changes_js})},
                 {"contents", frame.contents},
                 {"main", frame.main}});
}

}  // namespace zelk::tool
