#include "reader/lexer.hpp"

#include <algorithm>
#include <cstring>
#include <optional>

#include "base/characters.hpp"
#include "base/numbers.hpp"
#include "model/errors.hpp"
#include "platform/platform.hpp"
#include "text/keywords.hpp"
#include "text/token_codes.hpp"
#include "zelk/exception.hpp"

namespace zelk {
namespace {

/// Instead of a token's code: a comment, or a statement of an unknown kind.
constexpr int kSkipped = -1;

constexpr std::ptrdiff_t kTokenMax = 1023;  // characters of a name or number

/// What a byte begins where a token may start. Separators come first.
enum class Start : std::uint8_t {
  kBlank,
  kLineFeed,
  kNul,
  kName,
  kDigit,
  kQuote,
  kSlash,
  kEnd,
  kOther
};

constexpr std::array<Start, 256> make_starts() {
  std::array<Start, 256> starts{};
  for (unsigned byte = 0; byte < starts.size(); ++byte) {
    const char c = static_cast<char>(byte);
    Start start = byte > 127 || byte <= ' ' ? Start::kBlank : Start::kOther;
    if (is_letter(c)) start = Start::kName;
    if (is_digit(c)) start = Start::kDigit;
    starts[byte] = start;
  }
  starts[0] = Start::kNul;
  starts['\n'] = Start::kLineFeed;
  starts['"'] = Start::kQuote;
  starts['/'] = Start::kSlash;
  starts[0xFF] = Start::kEnd;
  return starts;
}

constexpr std::array<Start, 256> kStarts = make_starts();

unsigned char byte_at(const char* position) { return static_cast<unsigned char>(*position); }

TokenText text_between(const char* start, const char* end) {
  return {start, static_cast<std::size_t>(end - start)};
}

std::string_view between(const char* start, const char* end) {
  return text_between(start, end).view();
}

/// Drops the backslash of every escaped double quote between `start` and `end`; returns the new
/// end.
char* resolve_escapes(char* start, const char* end, const std::array<bool, 256>& leads) {
  char* to = start;
  for (const char* from = start; from != end; ++from) {
    const bool has_next = from + 1 != end;
    if (has_next && leads[byte_at(from)] && is_trail_byte(from[1])) {
      *to++ = *from++;
    } else if (has_next && *from == '\\' && from[1] == '"') {
      ++from;
    }
    *to++ = *from;
  }
  return to;
}

}  // namespace

Lexer::Lexer(ByteSource source)
    : window_(std::move(source)), leads_(platform::lead_bytes()), string_specials_(leads_) {
  for (const char special : {'\0', '\n', '"', '\\'}) string_specials_[byte_at(&special)] = true;
}

void Lexer::fail(std::uint32_t number, std::string_view text) const {
  zelk_read_error(number, line_, std::string(text).c_str());
  // Only the first error of a read raises; this one ends the read all the same.
  throw ZelkException(error_state().line);
}

int Lexer::next(SemanticValue& value) {
  int code = kSkipped;
  while (code == kSkipped) code = token(value);
  return code;
}

/// Reads a token, or something that is skipped where a token may start.
int Lexer::token(SemanticValue& value) {
  char* const start = skip_separators();
  switch (kStarts[byte_at(start)]) {
    case Start::kName:
      return name(start, value);
    case Start::kDigit:
      return number(start, value);
    case Start::kQuote:
      return string(start, value);
    case Start::kSlash:
      return slash(start);
    case Start::kOther:
      window_.set_cursor(start + 1);
      return *start;
    default:  // the end of the file, or a byte that ends the input
      window_.set_cursor(start);
      return ZELK_EOF;
  }
}

/// Returns the first byte that is no separator; a NUL there is the end of the file.
char* Lexer::skip_separators() {
  char* position = window_.cursor();
  for (;;) {
    while (kStarts[byte_at(position)] == Start::kBlank) ++position;
    const bool is_line_feed = *position == '\n';
    if (!is_line_feed && *position != '\0') return position;
    if (is_line_feed) ++line_;
    if (position != window_.limit()) {
      ++position;
    } else if (!more(position, position)) {
      return position;
    }
  }
}

// --- Names ---

int Lexer::name(char* start, SemanticValue& value) {
  char* const end = scan(start, start, is_name_character);
  if (end - start > kTokenMax) fail(ZELK_ERR_SYNTAX, between(start, start + kTokenMax));
  if (end == window_.limit() || byte_at(end) > 127) fail_in_name(start, end);
  window_.set_cursor(end);
  const std::string_view text = between(start, end);
  if (const Keyword* keyword = find_keyword(text)) return keyword->code;
  if (new_symbols_.contains(text)) {
    zelk_note(ZELK_ERR_NEW_SYMBOL, line_, std::string(text).c_str());
    skip_through(';');
    return kSkipped;
  }
  value.text = text_between(start, end);
  return T_IDENT;
}

/// The offender behind a name is a byte outside ASCII, or the end of the file, which counts as
/// 0xFF.
void Lexer::fail_in_name(char* start, char* end) {
  const char offender = end == window_.limit() ? '\xFF' : *end;
  fail(ZELK_ERR_INVALID_CHAR, std::string(start, end) + " :" + offender);
}

// --- Numbers ---

int Lexer::number(char* start, SemanticValue& value) {
  char* const end = skip_digits(start, start);
  if (*end == '.' || *end == 'e' || *end == 'E') return real(start, end, value);
  window_.set_cursor(end);
  const std::optional<WholeLiteral> literal = whole_literal(between(start, end));
  if (!literal) {
    value.real = literal_to_double(between(start, end));
    return T_DOUBLE;
  }
  value.integer = literal->value;
  return literal->is_short ? T_SHORT : T_ULONG;
}

/// A literal whose digits up to `position` are followed by a point or an exponent.
int Lexer::real(char* start, char* position, SemanticValue& value) {
  if (*position == '.') position = skip_digits(start, position + 1);
  if (*position == 'e' || *position == 'E') {
    ++position;
    if (position == window_.limit()) more(start, position);
    if (*position == '+' || *position == '-') ++position;
    const std::ptrdiff_t digits_offset = position - start;
    position = skip_digits(start, position);
    if (position - start == digits_offset) {
      window_.set_cursor(position);
      return ZELK_error;
    }
  }
  window_.set_cursor(position);
  value.real = literal_to_double(between(start, position));
  return T_DOUBLE;
}

char* Lexer::skip_digits(char*& start, char* position) {
  char* const end = scan(start, position, [](char c) { return is_digit(c); });
  if (end - start > kTokenMax) fail(ZELK_ERR_SYNTAX, between(start, start + kTokenMax));
  return end;
}

// --- Strings ---

int Lexer::string(char* quote, SemanticValue& value) {
  char* start = quote + 1;
  bool is_as_it_stands = true;  // no escape, no NUL
  char* position = skip_plain(start);
  while (*position != '"') {
    if (*position == '\n') {
      ++line_;
      ++position;
    } else {
      is_as_it_stands = false;
      position = skip_special(start, position);
    }
    position = skip_plain(position);
  }
  window_.set_cursor(position + 1);
  value.text = is_as_it_stands ? text_between(start, position) : unescaped(start, position);
  return T_STRING;
}

/// Returns the next byte that a string does not simply take: a quote, backslash, line feed, NUL or
/// lead byte.
char* Lexer::skip_plain(char* position) const {
  while (!string_specials_[byte_at(position)]) ++position;
  return position;
}

/// Skips an escaped quote, a lone backslash, a double-byte character or a NUL. At the limit, where
/// a NUL stands too, it only reads on.
char* Lexer::skip_special(char*& start, char* position) {
  if (position == window_.limit()) return read_on(start, position);
  const char first = *position;
  char* second = position + 1;
  if (second == window_.limit()) second = read_on(start, second);
  const bool is_pair =
      leads_[byte_at(&first)] ? is_trail_byte(*second) : first == '\\' && *second == '"';
  return second + (is_pair ? 1 : 0);
}

/// The text between two quotes with its escapes resolved, in place. A NUL ends a text in the
/// records, so it ends here too, with a warning.
TokenText Lexer::unescaped(char* start, char* end) const {
  end = resolve_escapes(start, end, leads_);
  auto* const nul =
      static_cast<char*>(std::memchr(start, '\0', static_cast<std::size_t>(end - start)));
  if (!nul) return text_between(start, end);
  zelk_note(ZELK_ERR_FORMAT, line_, "a text is cut at its NUL character");
  return text_between(start, nul);
}

// --- What is skipped ---

/// A comment, or the character "/".
int Lexer::slash(char* start) {
  char* second = start + 1;
  if (second == window_.limit()) more(start, second);
  window_.set_cursor(second);
  if (*second != '/') return '/';
  skip_through('\n');
  return kSkipped;
}

/// Skips everything up to and including the next `last`, which must come before the end of the
/// file.
void Lexer::skip_through(char last) {
  for (char* position = window_.cursor();; ++position) {
    if (position == window_.limit()) position = read_on(position, position);
    if (*position == '\n') ++line_;
    if (*position != last) continue;
    window_.set_cursor(position + 1);
    return;
  }
}

// --- The window ---

/// Reads on at `position`, the limit; `start` and `position` move along with their bytes. False at
/// the end of the file.
bool Lexer::more(char*& start, char*& position) {
  const std::ptrdiff_t offset = position - start;
  const bool has_more = window_.extend(start);
  if (!has_more && window_.failed()) fail(ZELK_ERR_NOT_FOUND, "the file cannot be read on");
  position = start + offset;
  return has_more;
}

/// `more` within something that must not end with the file; returns the new `position`.
char* Lexer::read_on(char*& start, char* position) {
  if (!more(start, position)) fail(ZELK_ERR_SYNTAX, kSyntaxErrorText);
  return position;
}

/// Returns the first character from `position` on that does not belong to the token at `start`,
/// which moves along. Stops early in a token that is too long already. The NUL at the limit must
/// not belong.
template <typename Predicate>
char* Lexer::scan(char*& start, char* position, Predicate belongs) {
  for (;;) {
    while (belongs(*position)) ++position;
    const bool may_go_on = position == window_.limit() && position - start <= kTokenMax;
    if (!may_go_on || !more(start, position)) return position;
  }
}

}  // namespace zelk
