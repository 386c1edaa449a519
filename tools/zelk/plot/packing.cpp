#include "plot/packing.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

#include "base/byte_order.hpp"
#include "base/seeded_hash.hpp"

namespace zelk::tool {

namespace {

constexpr double kNanosecondsPerSecond = 1e9;
constexpr double kMostNanoseconds = 9e18;
// The script counts in doubles; a difference of differences, doubled for its sign, is below 2^53.
constexpr std::int64_t kMostTicks = std::int64_t{1} << 50;
constexpr std::size_t kMostCodes = 1 << 16;

std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  result.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      result += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
    }
  }
  return result;
}

/// Of floats or doubles, with their lowest bytes first.
template <typename Number>
std::string base64_of(const std::vector<Number>& numbers) {
  using Bits = std::conditional_t<sizeof(Number) == 8, std::uint64_t, std::uint32_t>;
  std::string bytes(numbers.size() * sizeof(Number), '\0');
  char* to = bytes.data();
  for (const Number number : numbers) {
    store_little_endian(to, std::bit_cast<Bits>(number), sizeof number);
    to += sizeof number;
  }
  return base64(bytes);
}

void append_difference(std::string& bytes, std::int64_t difference) {
  const auto sign = static_cast<std::uint64_t>(difference >> 63);
  std::uint64_t rest = static_cast<std::uint64_t>(difference) << 1 ^ sign;
  for (; rest >= 0x80; rest >>= 7) bytes += static_cast<char>(rest | 0x80);
  bytes += static_cast<char>(rest);
}

/// None when a time is beyond what can be counted.
std::optional<std::vector<std::int64_t>> nanoseconds_of(const std::vector<double>& seconds) {
  std::vector<std::int64_t> result;
  result.reserve(seconds.size());
  for (const double time : seconds) {
    const double nanoseconds = time * kNanosecondsPerSecond;
    if (!(std::abs(nanoseconds) < kMostNanoseconds)) return std::nullopt;
    result.push_back(std::llround(nanoseconds));
  }
  return result;
}

/// Nanoseconds of the longest tick, up to a second, of which all times are multiples.
std::int64_t longest_tick(const std::vector<std::int64_t>& nanoseconds) {
  std::int64_t tick = 1'000'000'000;
  for (const std::int64_t time : nanoseconds) {
    while (time % tick != 0) tick /= 10;
  }
  return tick;
}

/// The codes of values: indices in a table, in which near values are near each other.
class ValueTable {
 public:
  /// False when there are too many values for a table.
  bool collect(const std::vector<double>& values) {
    const std::size_t limit = std::min(kMostCodes, values.size() / 4 + 1);
    for (const double value : values) {
      if (code_of_.try_emplace(bits(value), 0).second && code_of_.size() > limit) return false;
    }
    for (const auto& entry : code_of_) table_.push_back(std::bit_cast<double>(entry.first));
    std::ranges::sort(table_, {}, sort_key);
    for (std::size_t i = 0; i < table_.size(); ++i) {
      code_of_[bits(table_[i])] = static_cast<std::int64_t>(i);
    }
    return true;
  }

  std::int64_t code_of(double value) const { return code_of_.at(bits(value)); }
  const std::vector<double>& table() const { return table_; }

 private:
  static std::uint64_t bits(double value) { return std::bit_cast<std::uint64_t>(value); }

  /// A total order, which NaN and the two zeros have a place in.
  static std::int64_t sort_key(double value) {
    const auto key = std::bit_cast<std::int64_t>(value);
    return key < 0 ? INT64_MIN - key : key;
  }

  std::unordered_map<std::uint64_t, std::int64_t, SeededHash> code_of_;
  std::vector<double> table_;
};

bool is_float(double value) {
  return std::isnan(value) || static_cast<double>(static_cast<float>(value)) == value;
}

}  // namespace

nlohmann::json packed_times(const std::vector<double>& seconds) {
  const auto nanoseconds = nanoseconds_of(seconds);
  if (!nanoseconds) return {{"f64", base64_of(seconds)}};
  const std::int64_t tick = longest_tick(*nanoseconds);
  std::string bytes;
  std::int64_t before = 0;
  std::int64_t difference_before = 0;
  for (const std::int64_t time : *nanoseconds) {
    const std::int64_t ticks = time / tick;
    if (ticks > kMostTicks || ticks < -kMostTicks) return {{"f64", base64_of(seconds)}};
    append_difference(bytes, ticks - before - difference_before);
    difference_before = ticks - before;
    before = ticks;
  }
  return {{"ticks", base64(bytes)}, {"perSecond", 1'000'000'000 / tick}};
}

nlohmann::json packed_values(const std::vector<double>& values) {
  ValueTable table;
  if (!table.collect(values)) {
    if (!std::ranges::all_of(values, is_float)) return {{"f64", base64_of(values)}};
    return {{"f32", base64_of(std::vector<float>(values.begin(), values.end()))}};
  }
  std::string bytes;
  std::int64_t before = 0;
  for (const double value : values) {
    const std::int64_t code = table.code_of(value);
    append_difference(bytes, code - before);
    before = code;
  }
  return {{"codes", base64(bytes)}, {"table", base64_of(table.table())}};
}

}  // namespace zelk::tool
