#include "check/statements/token_reader.hpp"

#include <algorithm>
#include <span>

#include "base/characters.hpp"
#include "base/numbers.hpp"

namespace zelk::check {

namespace {

bool is_number_kind(TokenKind kind) {
  return kind == TokenKind::kWhole || kind == TokenKind::kReal || kind == TokenKind::kOddNumber;
}

/// Marks that people put into names.
bool is_mark_of_names(char mark) {
  return std::string_view("-.+/#&%$!?*<>='^~\\").find(mark) != std::string_view::npos;
}

/// "M", "m3", "m3M": one letter, digits, and the letter again.
bool is_indicator(std::string_view text) {
  text.remove_prefix(1);
  while (!text.empty() && is_digit(text.front())) text.remove_prefix(1);
  return text.empty() || (text.size() == 1 && is_letter(text.front()));
}

/// Whether, within a line, a keyword and the token behind it can only be a statement.
bool begins_like_statement(Word word, const Token* next) {
  if (!next) return false;
  if (word == Word::kNodes || word == Word::kBitTiming || word == Word::kNewSymbols)
    return next->is_mark(':');
  const bool is_name = next->kind == TokenKind::kName || next->kind == TokenKind::kOddName;
  if (word == Word::kSignal) return is_name;
  if (is_number_kind(next->kind) || next->kind == TokenKind::kText) return true;
  const bool is_of_object = next->is(Word::kNodes) || next->is(Word::kMessage) ||
                            next->is(Word::kSignal) || next->is(Word::kVariable);
  if (is_of_object && (word == Word::kComment || word == Word::kDefinition)) return true;
  return is_name && (word == Word::kVariable || word == Word::kValueTable);
}

/// Bytes outside ASCII and a name: the reader takes the former for blanks.
bool is_plain_behind_high(std::string_view name) {
  while (!name.empty() && static_cast<unsigned char>(name.front()) > 127) name.remove_prefix(1);
  return !name.empty() && is_letter(name.front()) && std::ranges::all_of(name, is_name_character);
}

bool is_count(const Document& document, const Token& token) {
  const auto literal = whole_literal(document.text_of(token));
  return token.kind == TokenKind::kWhole && literal && literal->is_short;
}

bool is_whole(const Document& document, const Token& token) {
  return token.kind == TokenKind::kWhole && whole_literal(document.text_of(token));
}

bool is_real(const Document&, const Token& token) {
  return token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal;
}

}  // namespace

// --- Where the reader is ---

bool TokenReader::at_number() const {
  return !at_end() && (is_number_kind(tokens_[at_].kind) ||
                       (tokens_[at_].is_mark('.') && odd_number_end() > at_ + 1));
}

bool TokenReader::at_name() const {
  if (at_end() || at_statement()) return false;
  const TokenKind kind = tokens_[at_].kind;
  return kind == TokenKind::kName || kind == TokenKind::kOddName || kind == TokenKind::kKeyword ||
         (is_number_kind(kind) && odd_name_end(at_) > at_ + 1);
}

bool TokenReader::at_statement() const {
  if (at_end()) return false;
  const Token& token = tokens_[at_];
  if (token.is(Word::kAnnounced)) return true;
  if (!begins_statement(token)) return false;
  return !is_on_line_of_previous(at_) || begins_like_statement(token.word, peek(1));
}

const Token* TokenReader::peek(std::uint32_t ahead) const {
  return at_ + ahead < tokens_.size() ? &tokens_[at_ + ahead] : nullptr;
}

bool TokenReader::is_on_line_of_previous(std::uint32_t token) const {
  if (token == 0) return false;
  const std::string_view between =
      document_.source.text(tokens_[token - 1].end, tokens_[token].begin);
  return between.find_first_of("\n\r") == std::string_view::npos;
}

bool TokenReader::touches_next(std::uint32_t token) const {
  return token + 1 < tokens_.size() && tokens_[token].end == tokens_[token + 1].begin;
}

bool TokenReader::is_within_name() const {
  if (at_end() || at_ == 0 || tokens_[at_ - 1].kind != TokenKind::kName || !touches_next(at_ - 1))
    return false;
  const TokenKind next = tokens_[at_].kind;
  const bool may_go_on = next == TokenKind::kMark || is_number_kind(next);
  const std::uint32_t end = may_go_on ? odd_name_end(at_ - 1) : at_;
  return end > at_ && tokens_[end - 1].kind != TokenKind::kMark;
}

// --- Faults ---

void TokenReader::fault(FaultKind kind, std::uint32_t token, std::uint32_t token_end,
                        std::string_view expected, std::string_view remedy) {
  if (is_exact_) is_readable_ = false;
  if (!is_exact_)
    document_.faults.push_back({kind, statement_, token, token_end, expected, remedy});
}

void TokenReader::missing(std::string_view expected, std::string_view remedy) {
  if (!is_readable_) return;
  // Two things missing at one place: the text is something else altogether.
  if (!is_exact_ && !document_.faults.empty()) {
    Fault& last = document_.faults.back();
    if (last.kind == FaultKind::kMissing && last.statement == statement_ && last.token == at_) {
      last.kind = FaultKind::kUnreadable;
      last.token_end = at_ + 1;
      is_readable_ = false;
      return;
    }
  }
  fault(FaultKind::kMissing, at_, at_, expected, remedy);
}

void TokenReader::unreadable(std::string_view expected) {
  if (!is_readable_) return;
  missing(expected, {});
  if (!is_readable_) return;  // the text is something else, or the reading is exact
  document_.faults.back().kind = FaultKind::kUnreadable;
  is_readable_ = false;
}

void TokenReader::skip_rest() {
  while (!at_end() && !at_statement()) {
    if (tokens_[at_++].is_mark(';')) return;
  }
}

void TokenReader::skip_to_statement() {
  while (!at_end() && !begins_statement(tokens_[at_])) ++at_;
}

// --- Taking ---

void TokenReader::begin(std::uint32_t statement) {
  statement_ = statement;
  is_readable_ = true;
  is_exact_ = true;
}

void TokenReader::begin_again(std::uint32_t first) {
  for (Token& token : std::span(tokens_).subspan(first, at_ - first)) token.role = Role::kNone;
  at_ = first;
  is_readable_ = true;
  is_exact_ = false;
}

void TokenReader::take(Role role) {
  if (!is_readable_ || at_end()) return;
  tokens_[at_++].role = role;
}

void TokenReader::mark(char mark, std::string_view expected) {
  static constexpr std::string_view kMarks = ":;,|()[]@-";
  if (!is_readable_) return;
  if (at_mark(mark)) return take();
  const std::size_t index = kMarks.find(mark);
  missing(expected, kMarks.substr(index, 1));
}

void TokenReader::keyword(Word word, std::string_view expected) {
  if (!is_readable_) return;
  if (at_word(word)) return take(Role::kObject);
  missing(expected, spelling(word));
}

/// Makes one token of those from here up to `last`.
void TokenReader::merge(std::uint32_t last, TokenKind kind) {
  tokens_[at_].end = tokens_[last].end;
  tokens_[at_].kind = kind;
  for (std::uint32_t i = at_ + 1; i <= last; ++i) tokens_[i].kind = TokenKind::kAbsorbed;
}

/// Behind the last of the tokens that, without space between them, are meant for one name.
std::uint32_t TokenReader::odd_name_end(std::uint32_t first) const {
  std::uint32_t last = first;
  bool has_letters = false;
  for (;; ++last) {
    const Token& token = tokens_[last];
    const bool is_part = is_number_kind(token.kind) || token.kind == TokenKind::kName ||
                         token.kind == TokenKind::kOddName || token.kind == TokenKind::kKeyword ||
                         (token.kind == TokenKind::kMark && is_mark_of_names(token.mark));
    if (!is_part) break;
    has_letters |= token.kind == TokenKind::kName || token.kind == TokenKind::kOddName;
    if (!touches_next(last)) {
      ++last;
      break;
    }
  }
  return has_letters ? last : first + 1;
}

void TokenReader::take_name(Role role, std::string_view expected) {
  const std::uint32_t end = odd_name_end(at_);
  const std::uint32_t first = at_;
  if (end > at_ + 1) merge(end - 1, TokenKind::kOddName);
  const TokenKind kind = tokens_[first].kind;
  at_ = end;
  tokens_[first].role = role;
  if (kind == TokenKind::kOddName) {
    fault(FaultKind::kOddName, first, end, expected);
    document_.faults.back().is_accepted = is_plain_behind_high(document_.text_of(tokens_[first]));
  }
  if (kind == TokenKind::kKeyword) fault(FaultKind::kKeywordName, first, end, expected);
}

void TokenReader::name(Role role, std::string_view expected) {
  if (!is_readable_) return;
  const bool is_plain = at_kind(TokenKind::kName) && (is_exact_ || !touches_next(at_));
  if (is_plain) return take(role);
  if (is_exact_ || !at_name()) return unreadable(expected);
  take_name(role, expected);
}

void TokenReader::new_name(Role role, std::string_view expected) {
  if (!is_readable_) return;
  if (is_exact_) return name(role, expected);
  const Token* const next = peek(1);
  const bool is_number = at_number() && next && next->is_mark(':');
  const bool has_word =
      at_number() && next && next->kind == TokenKind::kName && is_on_line_of_previous(at_ + 1);
  if (!at_name() && !is_number && !has_word) return unreadable(expected);
  // The words in front of the colon are one name, but for an indicator at their end.
  std::uint32_t last = at_;
  const auto goes_on = [&](std::uint32_t token) {
    return token < tokens_.size() && !tokens_[token].is_mark(':') && !tokens_[token].is_mark(';') &&
           tokens_[token].kind != TokenKind::kText && is_on_line_of_previous(token);
  };
  while (last - at_ < 32 && goes_on(last + 1)) ++last;
  const bool ends_at_colon = last + 1 < tokens_.size() && tokens_[last + 1].is_mark(':');
  if (ends_at_colon && role == Role::kSignal && last > at_ && !touches_next(last - 1) &&
      tokens_[last].kind == TokenKind::kName && is_indicator(document_.text_of(tokens_[last])))
    --last;
  if (!ends_at_colon && !at_name()) return unreadable(expected);
  if (!ends_at_colon || (last == at_ && !at_number())) return take_name(role, expected);
  const std::uint32_t first = at_;
  merge(last, TokenKind::kOddName);
  tokens_[first].role = role;
  at_ = last + 1;
  fault(FaultKind::kOddName, first, at_, expected);
}

void TokenReader::text(Role role, std::string_view expected) {
  if (!is_readable_) return;
  if (at_text()) return take(role);
  const bool may_lack_quotes = role == Role::kText || role == Role::kItem;
  if (may_lack_quotes && at_name()) return word(role, false);
  missing(expected, "\"\"");
}

void TokenReader::word(Role role, bool may_be_name) {
  if (!is_readable_) return;
  const std::uint32_t first = at_;
  const std::uint32_t end = is_exact_ ? first + 1 : odd_name_end(first);
  const bool is_plain = at_kind(TokenKind::kName) && end == first + 1;
  if (may_be_name && is_plain) return take(role);
  if (end > first + 1) merge(end - 1, TokenKind::kOddName);
  tokens_[first].role = role;
  at_ = end;
  fault(FaultKind::kUnquotedText, first, end, "a text between quotes");
}

/// Behind the last of the tokens that, without space between them, are meant for one number.
std::uint32_t TokenReader::odd_number_end() const {
  std::uint32_t last = at_;
  while (touches_next(last)) {
    const Token& next = tokens_[last + 1];
    const bool is_part =
        is_number_kind(next.kind) || next.kind == TokenKind::kName ||
        (next.kind == TokenKind::kOddName && is_name_character(document_.text_of(next).front()));
    if (!is_part) break;
    ++last;
  }
  return last + 1;
}

/// Digits with an "e" behind them that begins no exponent, which the reader takes for no number.
bool TokenReader::is_broken_exponent(std::uint32_t number) const {
  const char next = touches_next(number) ? document_.source.text()[tokens_[number].end] : '\0';
  return next == 'e' || next == 'E';
}

void TokenReader::number(Role role, std::string_view expected, IsRight is_right) {
  if (!is_readable_) return;
  if (is_exact_) {
    const bool is_plain =
        !at_end() && is_right(document_, tokens_[at_]) && !is_broken_exponent(at_);
    return is_plain ? take(role) : unreadable(expected);
  }
  const bool is_word = at_kind(TokenKind::kName) && is_real == is_right;  // such as "NaN"
  if (!at_number() && !is_word) return unreadable(expected);
  const std::uint32_t first = at_;
  const std::uint32_t end = odd_number_end();
  if (end > first + 1) merge(end - 1, TokenKind::kOddNumber);
  at_ = end;
  tokens_[first].role = role;
  if (!is_right(document_, tokens_[first])) fault(FaultKind::kOddNumber, first, end, expected);
}

void TokenReader::count(Role role, std::string_view expected) { number(role, expected, is_count); }

void TokenReader::whole(Role role, std::string_view expected) { number(role, expected, is_whole); }

void TokenReader::signed_whole(Role role, std::string_view expected) {
  if (at_mark('-') || at_mark('+')) take(role);
  whole(role, expected);
}

void TokenReader::real(Role role, std::string_view expected, char behind) {
  if (at_mark('-') || at_mark('+')) take(role);
  const bool has_comma = is_readable_ && !is_exact_ && behind && at_kind(TokenKind::kWhole) &&
                         touches_next(at_) && peek(1)->is_mark(',') && touches_next(at_ + 1) &&
                         is_number_kind(peek(2)->kind) && peek(3) && peek(3)->is_mark(behind);
  if (!has_comma) return number(role, expected, is_real);
  merge(at_ + 2, TokenKind::kOddNumber);
  tokens_[at_].role = role;
  fault(FaultKind::kOddNumber, at_, at_ + 3, expected);
  at_ += 3;
}

void TokenReader::semicolon(std::string_view expected) {
  if (!is_readable_) return;
  const std::uint32_t first = at_;
  if (!is_without_semicolon(at_)) {
    while (!at_end() && !at_mark(';') && !at_statement() && is_on_line_of_previous(at_)) ++at_;
    if (at_ != first && at_mark(';')) fault(FaultKind::kSurplus, first, at_, expected);
    if (!at_mark(';')) {
      without_semicolon_ = {first, at_};
      at_ = first;
    }
  }
  if (at_mark(';')) return take();
  missing(expected, ";");
}

void TokenReader::comma_names(Role role, std::string_view expected) {
  name(role, expected);
  while (is_readable_) {
    const bool has_comma = at_mark(',');
    const bool names_next =
        !at_end() && !at_statement() && is_on_line_of_previous(at_) && at_name();
    if (!has_comma && !names_next) return;
    if (names_next) {
      missing("',' between names", ",");
    } else {
      take();
      const bool is_last = !at_name();
      if (is_last) {
        fault(FaultKind::kSurplus, at_ - 1, at_, expected);
        return;
      }
    }
    name(role, expected);
  }
}

void TokenReader::blank_names(Role role) {
  const auto is_surplus = [this] {
    return at_mark(',') ||
           (!at_end() && !at_mark(';') && !at_statement() && is_on_line_of_previous(at_));
  };
  while (is_readable_) {
    if (at_name()) {
      name(role, "a name");
    } else if (is_surplus()) {
      fault(FaultKind::kSurplus, at_, at_ + 1, "a blank between names");
      take();
    } else {
      return;
    }
  }
}

}  // namespace zelk::check
