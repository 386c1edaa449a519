#include "logs/forms/trc_columns.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "base/characters.hpp"
#include "logs/forms/lines.hpp"
#include "logs/forms/trc_header.hpp"
#include "logs/forms/trc_line.hpp"

namespace zelk::logs {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool takes(const TrcVersion& version, std::string_view line) {
  std::array<unsigned char, kLongestTrcData + ZelkFrameBlock::kSlack> data;
  TrcFrame frame{.data = data.data()};
  const TrcHeader header{.columns = std::string(version.columns)};
  return parse_trc_line(line, header, frame) != LineKind::kMalformed;
}

bool tells_nothing(std::string_view line) {
  return line.starts_with(';') || line.find_first_not_of(kBlanks) == line.npos;
}

}  // namespace

TrcColumns columns_of_trc(std::string_view lines) {
  const std::span<const TrcVersion> all = trc_versions();
  std::vector<TrcVersion> versions(all.begin(), all.end());
  while (!lines.empty() && versions.size() > 1) {
    std::string_view line = take_line(lines);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (tells_nothing(line)) continue;
    std::vector<TrcVersion> taking;
    std::ranges::copy_if(versions, std::back_inserter(taking),
                         [&](const TrcVersion& version) { return takes(version, line); });
    if (!taking.empty()) versions.swap(taking);
  }
  if (versions.size() == all.size()) return {};
  return {versions.front().columns, versions.size() == 1};
}

bool begins_with_trc_line(PeekedStream& stream) {
  constexpr std::string_view kOthers = "#([";  // in no trace, and early in lines of candump
  std::size_t size = 0;
  const auto next = [&] {
    const std::string_view text = stream.peek(++size);
    return text.size() < size ? '\0' : text[size - 1];
  };
  char c = next();
  while (kBlanks.find(c) != kBlanks.npos && size < kLongestLine) c = next();
  const std::size_t begin = size - 1;
  if (!is_digit(c)) return false;
  while (c != '\n' && c != '\0' && size < kLongestLine) {
    if (kOthers.find(c) != kOthers.npos) return false;
    c = next();
  }
  std::string_view line = stream.peek(size).substr(begin);
  return !columns_of_trc(take_line(line)).letters.empty();
}

}  // namespace zelk::logs
