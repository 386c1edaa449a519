#include "check/repair/number_mends.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/characters.hpp"
#include "base/numbers.hpp"
#include "check/findings/sentences.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kMostCharacters = 1023;
constexpr double kMostCount = 32767;
constexpr double kMostWhole = std::numeric_limits<std::uint32_t>::max();

/// Roles of numbers that go up to 32767, and of other whole numbers; the rest are reals.
bool is_count(Role role) {
  return role == Role::kSize || role == Role::kStart || role == Role::kLength ||
         role == Role::kOrder || role == Role::kBaudRate || role == Role::kRegister;
}

bool is_real(Role role) {
  return role == Role::kFactor || role == Role::kOffset || role == Role::kMinimum ||
         role == Role::kMaximum || role == Role::kInitial || role == Role::kNumber ||
         role == Role::kValue;
}

/// Digits, with a point and an exponent where the text has them so; empty when it begins otherwise.
std::string_view number_at_begin(std::string_view text) {
  double ignored = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), ignored);
  const bool begins = !text.empty() && (is_digit(text[0]) || text[0] == '.');
  return begins ? text.substr(0, static_cast<std::size_t>(result.ptr - text.data())) : "";
}

/// As the format spells a real: a digit in front of the point.
std::string spelled_real(std::string_view text) {
  std::string spelling(text);
  std::ranges::replace(spelling, ',', '.');
  if (spelling.starts_with('.')) spelling.insert(0, 1, '0');
  const std::string_view number = number_at_begin(spelling);
  const bool is_right = !number.empty() && number.size() == spelling.size();
  if (is_right && spelling.size() <= kMostCharacters) return spelling;
  return std::string(NumberText(lenient_number(text).value_or(0)).view());
}

std::string spelled_whole(std::string_view text, double most) {
  const double value = lenient_number(text).value_or(0);
  const double whole = std::clamp(std::round(value), 0.0, most);
  return std::to_string(static_cast<std::uint64_t>(whole));
}

}  // namespace

std::optional<double> lenient_number(std::string_view text) {
  const bool is_negative = text.starts_with('-');
  if (is_negative || text.starts_with('+')) text.remove_prefix(1);
  const bool is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (is_hexadecimal) {
    const auto value = parse_whole<std::uint64_t>(text.substr(2), 16);
    if (value) return is_negative ? -static_cast<double>(*value) : static_cast<double>(*value);
  }
  std::string spelling(text);
  std::ranges::replace(spelling, ',', '.');
  if (spelling.starts_with('.')) spelling.insert(0, 1, '0');
  const std::string_view number = number_at_begin(spelling);
  if (number.empty()) return std::nullopt;
  const double value = literal_to_double(number);
  return is_negative ? -value : value;
}

void mend_number(Mender& mender, const Fault& fault) {
  const Token& token = mender.token(fault.token);
  const bool is_number = token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal ||
                         token.kind == TokenKind::kOddNumber || token.kind == TokenKind::kName;
  // Where a name is too long, it is a name that stands there.
  const bool is_name = token.kind == TokenKind::kName && fault.kind == FaultKind::kTooLong;
  const bool is_value = is_number && !is_name && token.role != Role::kNone;
  // An identifier beyond 32 bits names no message, and no other number can stand for it.
  const std::string_view text = mender.text_of(fault.token);
  const bool is_identifier = token.role == Role::kMessageId || token.role == Role::kMessageRef;
  const double number = lenient_number(text).value_or(-1);
  if (!is_value || (is_identifier && !(number >= 0 && number <= kMostWhole))) return;
  const std::string spelling =
      is_real(token.role) ? spelled_real(text)
                          : spelled_whole(text, is_count(token.role) ? kMostCount : kMostWhole);
  const bool is_guess = !lenient_number(text);
  mender.replace_token(fault.token, spelling);
  mender.note(
      FaultKind::kOddNumber, fault.statement, fault.token, fault.token + 1,
      shown(text) + (is_guess ? ", which is no number, replaced by " : " spelled ") + spelling);
}

}  // namespace zelk::check
