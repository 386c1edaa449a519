#include "check/statements/tokenizer.hpp"

#include <array>
#include <cstring>
#include <string_view>

#include "base/characters.hpp"

namespace zelk::check {

namespace {

/// What a byte begins where a token may start.
enum class Start : std::uint8_t { kSpace, kName, kDigit, kQuote, kSlash, kHigh, kMark };

constexpr std::array<Start, 256> make_starts() {
  std::array<Start, 256> starts{};
  for (unsigned byte = 0; byte < starts.size(); ++byte) {
    const char c = static_cast<char>(byte);
    Start start = byte <= ' ' ? Start::kSpace : Start::kMark;
    if (byte > 127) start = Start::kHigh;
    if (is_letter(c)) start = Start::kName;
    if (is_digit(c)) start = Start::kDigit;
    starts[byte] = start;
  }
  starts['"'] = Start::kQuote;
  starts['/'] = Start::kSlash;
  return starts;
}

constexpr std::array<Start, 256> kStarts = make_starts();

Start start_of(char c) { return kStarts[static_cast<unsigned char>(c)]; }

bool is_name_or_high(char c) { return is_name_character(c) || start_of(c) == Start::kHigh; }

/// Byte order marks and blanks of Unicode, which are no part of a name.
constexpr std::string_view kWideSpaces[] = {"\xEF\xBB\xBF", "\xC2\xA0",     "\xE2\x80\xA8",
                                            "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE3\x80\x80",
                                            "\xE2\x80\x8B", "\xA0"};

constexpr std::ptrdiff_t kMostCharacters = 1023;  // of a name or number

class Tokenizer {
 public:
  explicit Tokenizer(const Source& source)
      : begin_(source.text().data()),
        end_(begin_ + source.size()),
        at_(begin_),
        line_break_(source.line_break()),
        has_nul_(source.text().find('\0') != std::string_view::npos) {
    result_.tokens.reserve(source.size() / 5 * 2 + 16);  // some more than most files have
  }

  Tokens run() {
    while (at_ != end_) step();
    return std::move(result_);
  }

 private:
  void step() {
    switch (start_of(*at_)) {
      case Start::kSpace:
        if (*at_ == '\0') note_byte(FaultKind::kNulByte, nul_noted_);
        ++at_;
        break;
      case Start::kName:
        name(at_);
        break;
      case Start::kDigit:
        number();
        break;
      case Start::kQuote:
        text();
        break;
      case Start::kSlash:
        slash();
        break;
      case Start::kHigh:
        high();
        break;
      case Start::kMark:
        mark();
        break;
    }
  }

  void mark() {
    add(TokenKind::kMark, at_, at_ + 1).mark = *at_;
    if (*at_ == ';') statement_ = Word::kNone;
    ++at_;
  }

  /// @param from  of the name, whose first bytes may have been passed
  void name(const char* from) {
    const char* const plain = at_;
    while (at_ != end_ && is_name_character(*at_)) ++at_;
    const auto plain_size = static_cast<std::size_t>(at_ - plain);
    if (from != plain && find_word({plain, plain_size}) != Word::kNone) from = plain;
    if (pass_high_rest() || start_of(*from) == Start::kHigh) {
      add(TokenKind::kOddName, from, at_);
      return;
    }
    const std::string_view text(from, static_cast<std::size_t>(at_ - from));
    const Word word = find_word(text);
    add(word == Word::kNone ? TokenKind::kName : TokenKind::kKeyword, from, at_).word = word;
    if (place_of(word) != 0 && !is_object(word)) statement_ = word;
    if (at_ == end_) note(FaultKind::kNoFinalLineFeed);
    if (at_ != end_ && start_of(*at_) == Start::kHigh) note_last(FaultKind::kOddSpace);
    note_length(from);
  }

  /// Passes what is behind the plain beginning of an odd name. Bytes outside ASCII in front of a
  /// keyword that begins a statement are space.
  ///
  /// @return false when there is nothing
  bool pass_high_rest() {
    const char* const from = at_;
    while (is_high_here()) {
      const char* const high = at_;
      while (is_high_here()) ++at_;
      if (behind_keyword(at_)) {
        at_ = high;
        break;
      }
      while (at_ != end_ && is_name_character(*at_)) ++at_;
    }
    return at_ != from;
  }

  /// Behind a keyword that begins statements; null when none stands here.
  const char* behind_keyword(const char* from) const {
    const char* behind = from;
    while (behind != end_ && is_name_character(*behind)) ++behind;
    const std::string_view word(from, static_cast<std::size_t>(behind - from));
    return place_of(find_word(word)) == 0 ? nullptr : behind;
  }

  void note_length(const char* from) {
    if (at_ - from > kMostCharacters) note_last(FaultKind::kTooLong);
  }

  bool is_high_here() const {
    return at_ != end_ && start_of(*at_) == Start::kHigh && wide_space() == 0;
  }

  void number() {
    const char* const from = at_;
    skip_digits();
    TokenKind kind = TokenKind::kWhole;
    if (at_ != end_ && *at_ == '.') {
      kind = TokenKind::kReal;
      ++at_;
      skip_digits();
    }
    if (at_ != end_ && (*at_ == 'e' || *at_ == 'E')) {
      const char* exponent = at_ + 1;
      if (exponent != end_ && (*exponent == '+' || *exponent == '-')) ++exponent;
      if (exponent != end_ && is_digit(*exponent)) {
        kind = TokenKind::kReal;
        at_ = exponent;
        skip_digits();
      }
    }
    add(kind, from, at_);
    note_length(from);
  }

  void skip_digits() {
    while (at_ != end_ && is_digit(*at_)) ++at_;
  }

  void slash() {
    const bool is_comment = end_ - at_ > 1 && at_[1] == '/';
    if (!is_comment) return mark();
    const auto* const line_end =
        static_cast<const char*>(std::memchr(at_, '\n', static_cast<std::size_t>(end_ - at_)));
    if (!line_end) note(FaultKind::kNoFinalLineFeed);
    at_ = line_end ? line_end + 1 : end_;
  }

  /// Bytes outside ASCII are space for the reader; those directly in front of a name belong to it.
  void high() {
    const char* const from = at_;
    if (const std::size_t size = wide_space()) {
      at_ += size;
      return;
    }
    for (; is_high_here(); ++at_)
      if (*at_ == '\xFF') note_byte(FaultKind::kEndByte, end_noted_);
    if (at_ != end_ && is_name_character(*at_) && !is_number_here()) name(from);
  }

  /// Whether digits stand here that do not go on as a name.
  bool is_number_here() const {
    const char* behind = at_;
    while (behind != end_ && is_digit(*behind)) ++behind;
    return behind != at_ && (behind == end_ || !is_name_or_high(*behind));
  }

  /// Size of the wide space that stands here; 0 for none.
  std::size_t wide_space() const {
    const std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
    for (const std::string_view space : kWideSpaces)
      if (rest.starts_with(space)) return space.size();
    return 0;
  }

  // --- Texts ---

  void text() {
    const char* const from = at_;
    const char* const close = closing_quote(from + 1);
    const char* const open_end = open_text_end(from, close);
    if (open_end) {
      note(FaultKind::kOpenText);
      add(TokenKind::kOpenText, from, open_end);
      at_ = open_end;
    } else {
      at_ = close + 1;
      add(TokenKind::kText, from, at_);
      const auto size = static_cast<std::size_t>(at_ - from);
      if (has_nul_ && std::memchr(from, '\0', size)) note_last(FaultKind::kNulByte);
    }
  }

  /// The next quote without a backslash in front; the end of the text when there is none. The last
  /// answer holds up to its place, so that open texts over escaped quotes cost no second search.
  const char* closing_quote(const char* from) {
    if (from <= close_) return close_;
    for (close_ = from; close_ != end_; ++close_) {
      const auto rest = static_cast<std::size_t>(end_ - close_);
      const auto* const quote = static_cast<const char*>(std::memchr(close_, '"', rest));
      close_ = quote ? quote : end_;
      if (!quote || quote[-1] != '\\') break;
    }
    return close_;
  }

  /// Where the text ends when its second quote is missing; null when it is not.
  const char* open_text_end(const char* from, const char* close) const {
    const char* line = next_line(from, close);
    while (line != close && !begins_statement(line)) line = next_line(line, close);
    const bool is_closed =
        close != end_ && (line == close || (may_end_statement() && goes_on(close + 1)));
    if (is_closed) return nullptr;
    const char* last = line;
    while (last != from + 1 && (start_of(last[-1]) == Start::kSpace || last[-1] == ';')) --last;
    return last;
  }

  /// Whether the keyword of an object stands in a statement about one, and begins none.
  bool is_object(Word word) const {
    const bool names_kind = word == Word::kMessage || word == Word::kSignal ||
                            word == Word::kNodes || word == Word::kVariable;
    return names_kind && place_of(statement_) >= place_of(Word::kComment);
  }

  /// Whether a text may be the last of the statement in which it stands. Behind those of versions
  /// and units a semicolon is a fault: once it is removed, it tells no more that the text was
  /// closed.
  bool may_end_statement() const {
    if (!result_.tokens.empty() && result_.tokens.back().is_mark(']')) return false;  // a unit
    return statement_ != Word::kVersion && statement_ != Word::kSignal &&
           statement_ != Word::kVariable;
  }

  /// Where the next line begins; `limit` when it does not before that.
  const char* next_line(const char* from, const char* limit) const {
    const auto size = static_cast<std::size_t>(limit - from);
    const auto* const line_end = static_cast<const char*>(std::memchr(from, line_break_, size));
    return line_end ? line_end + 1 : limit;
  }

  /// Whether the line begins with a keyword that begins statements, and then a blank, colon or
  /// quote, or with that alone: where the text ends behind it, a mend adds a quote there.
  bool begins_statement(const char* line) const {
    while (line != end_ && (*line == ' ' || *line == '\t')) ++line;
    const char* const word_end = behind_keyword(line);
    if (!word_end) return false;
    return word_end == end_ || start_of(*word_end) == Start::kSpace || *word_end == ':' ||
           *word_end == '"' || *word_end == ';';
  }

  /// Whether what stands behind a text's second quote goes on with, or ends, a statement.
  bool goes_on(const char* behind) const {
    while (behind != end_ && start_of(*behind) == Start::kSpace && *behind != line_break_) ++behind;
    return behind != end_ && (*behind == ';' || *behind == ',');
  }

  // --- Results ---

  Token& add(TokenKind kind, const char* from, const char* to) {
    return result_.tokens.emplace_back(Token{static_cast<std::uint32_t>(from - begin_),
                                             static_cast<std::uint32_t>(to - begin_), kind});
  }

  /// A fault at the next token.
  void note(FaultKind kind) {
    const auto next = static_cast<std::uint32_t>(result_.tokens.size());
    result_.faults.push_back({kind, Fault::kNoStatement, next, next});
    result_.faults.back().is_accepted = kind == FaultKind::kNulByte;
  }

  /// All bytes of a kind in front of one token are one fault.
  ///
  /// @param noted  the number of tokens at the last one
  void note_byte(FaultKind kind, std::size_t& noted) {
    if (noted == result_.tokens.size()) return;
    noted = result_.tokens.size();
    note(kind);
  }

  /// A fault of the last token.
  void note_last(FaultKind kind) {
    note(kind);
    --result_.faults.back().token;
  }

  Tokens result_;
  const char* const begin_;
  const char* const end_;
  const char* at_;
  const char* close_ = nullptr;   ///< the last answer of `closing_quote`
  Word statement_ = Word::kNone;  ///< the keyword of the one that stands here
  const char line_break_;
  const bool has_nul_;
  std::size_t nul_noted_ = std::string_view::npos;
  std::size_t end_noted_ = std::string_view::npos;
};

}  // namespace

Tokens tokenize(const Source& source) { return Tokenizer(source).run(); }

}  // namespace zelk::check
