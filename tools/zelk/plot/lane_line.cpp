#include "plot/lane_line.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "term/text.hpp"

namespace zelk::tool {

namespace {

char letter_of(std::size_t text) {
  constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  return text < kLetters.size() ? kLetters[text] : '?';
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

}  // namespace

void LaneTexts::append(StyledLine& line, const Lane& lane, const Span& times, std::size_t width) {
  Letters letters{&lane, {}};
  std::size_t at = 0;
  for (const Band& band : bands(lane, {0, 0, static_cast<double>(width), 1}, times)) {
    const auto column = [width](double place) {
      return static_cast<std::size_t>(
          std::clamp(std::round(place), 0.0, static_cast<double>(width)));
    };
    // What rounding leaves no column for gets one if there is still one.
    const std::size_t begin = std::max(at, std::min(column(band.begin), width - 1));
    const std::size_t end = std::max(column(band.end), std::min(begin + 1, width));
    if (begin >= end) continue;
    line.pad(begin - at).append(run(band, end - begin, letters), band.text + 1);
    at = end;
  }
  if (!letters.texts.empty()) used_.push_back(letters);
}

std::string LaneTexts::run(const Band& band, std::size_t columns, Letters& letters) const {
  const bool is_several = band.text == Stretch::kSeveral;
  if (is_several) {
    letters.texts.insert(band.text);
    return repeated(ascii_ ? "#" : "▒", columns);
  }
  const std::string& whole = letters.lane->texts[band.text];
  const std::size_t room = std::max<std::size_t>(1, columns - 1);
  std::string text = cut_to(whole, room + 1, ascii_);
  if (width_of(text) > room || text.empty()) {
    letters.texts.insert(band.text);
    text = letter_of(band.text);
  }
  if (columns == 1) return text;
  return (ascii_ ? "|" : "├") + text + repeated(ascii_ ? "-" : "─", room - width_of(text));
}

std::vector<std::string> LaneTexts::legend() const {
  constexpr std::size_t kMostColumns = 200;  // of a text
  std::vector<std::string> lines;
  for (const Letters& letters : used_) {
    std::string line = letters.lane->name + ':';
    for (const std::size_t text : letters.texts) {
      const bool is_several = text == Stretch::kSeveral;
      line += text == *letters.texts.begin() ? " " : ", ";
      if (is_several) {
        line += ascii_ ? "# several" : "▒ several";
      } else {
        line += std::string{letter_of(text), ' '} +
                cut_to(letters.lane->texts[text], kMostColumns, ascii_);
      }
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace zelk::tool
