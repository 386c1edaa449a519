#include "plot/styled_line.hpp"

#include <array>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::string_view kPlain = "\x1B[0m";
constexpr std::array<std::string_view, 6> kColors = {"\x1B[36m", "\x1B[33m", "\x1B[32m",
                                                     "\x1B[35m", "\x1B[34m", "\x1B[31m"};

}  // namespace

StyledLine& StyledLine::append(std::string_view text, std::size_t style) {
  width_ += width_of(text);
  const bool is_blank = text.find_first_not_of(' ') == std::string_view::npos;
  if (has_colors_ && !is_blank && style != style_) {
    text_ += style == 0 ? kPlain : kColors[(style - 1) % kColors.size()];
    style_ = style;
  }
  text_ += text;
  return *this;
}

std::string StyledLine::text() const {
  const std::size_t end = text_.find_last_not_of(' ') + 1;
  return text_.substr(0, end).append(style_ == 0 ? "" : kPlain);
}

}  // namespace zelk::tool
