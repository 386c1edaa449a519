#include "monitor/screen/line.hpp"

#include <algorithm>

namespace zelk::tool {

void LineWriter::append(std::string_view text, Role role) {
  if (text.empty()) return;
  if (line_.pieces.empty() || line_.pieces.back().role != role) line_.pieces.push_back({role, ""});
  line_.pieces.back().text += text;
}

void LineWriter::add(std::string_view text, Role role) {
  const FittedText fit = fitted(text, room(), characters_);
  append(fit.text, role);
  column_ += fit.columns;
}

void LineWriter::add_left(std::string_view text, std::size_t width, Role role) {
  const std::size_t end = column_ + std::min(width, room());
  const FittedText fit = fitted(text, end - column_, characters_);
  append(fit.text, role);
  column_ += fit.columns;
  skip_to(end);
}

void LineWriter::add_right(std::string_view text, std::size_t width, Role role) {
  const std::size_t end = column_ + std::min(width, room());
  const FittedText fit = fitted(text, end - column_, characters_);
  skip_to(end - fit.columns);
  append(fit.text, role);
  column_ = end;
}

void LineWriter::skip_to(std::size_t column) {
  const std::size_t end = std::min(column, columns_);
  if (end <= column_) return;
  append(std::string(end - column_, ' '), line_.background);
  column_ = end;
}

}  // namespace zelk::tool
