#include "check/repair/recovery.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "check/findings/sentences.hpp"
#include "check/repair/number_mends.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

bool is_number(const Token& token) {
  return token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal ||
         token.kind == TokenKind::kOddNumber;
}

bool is_text(const Token& token) {
  return token.kind == TokenKind::kText || token.kind == TokenKind::kOpenText;
}

bool is_name(const Token& token) {
  return token.kind == TokenKind::kName || token.kind == TokenKind::kOddName ||
         token.kind == TokenKind::kKeyword;
}

bool is_sign(const Token& token) { return token.is_mark('+') || token.is_mark('-'); }

bool begins_number(const Token& token) { return is_number(token) || is_sign(token); }

bool is_word(const Token& token) { return is_name(token) || is_number(token); }

/// Reads the tokens of a statement and takes from them what has the looks of its parts.
class Salvage {
 public:
  Salvage(const Document& document, const Statement& statement) : document_(document) {
    for (const Token& token : document.tokens_of(statement))
      if (token.kind != TokenKind::kAbsorbed) tokens_.push_back(&token);
  }

  /// "BO_ id name: size transmitter"; empty without an identifier.
  std::string message() {
    const std::string id = has(1) && is_number(*tokens_[1]) ? whole(1) : "";
    if (id.empty()) return "";
    const std::size_t colon = find_mark(':', 2);
    const bool has_colon = colon != tokens_.size();
    const std::size_t first = find(is_word, 2);
    const std::size_t name_end = has_colon ? colon : find(is_number, 2);
    std::string name = stretch(first, has_colon ? colon : std::min(name_end, std::size_t{3}));
    if (name.empty()) name = "Message_" + id;
    const std::size_t size = find(is_number, has_colon ? colon + 1 : 3);
    const std::size_t sender = find(is_name, size != tokens_.size() ? size + 1
                                             : has_colon            ? colon + 1
                                                                    : 3);
    const bool has_sender = sender != tokens_.size() && tokens_[sender]->kind == TokenKind::kName;
    return "BO_ " + id + ' ' + name + ": " + (size == tokens_.size() ? "8" : text(size)) + ' ' +
           (has_sender ? text(sender) : ZELK_NO_NODE);
  }

  /// "SG_ name indicator : start|length@order (factor,offset) [minimum|maximum] unit receivers";
  /// empty without a place.
  std::string signal() {
    const std::size_t bar = find_mark('|', 1);
    const std::size_t scale_begin = std::min(find_mark('(', 1), find_mark('[', 1));
    const bool has_place = bar > 2 && bar < scale_begin && has(bar + 1) &&
                           is_number(*tokens_[bar - 1]) && is_number(*tokens_[bar + 1]);
    if (!has_place) return "";
    const std::size_t first = find(is_word, 1);
    const std::size_t name_end = std::min(find_mark(':', 1), bar - 1);
    if (first >= name_end) return "";
    std::size_t at = bar + 2;
    const std::string byte_order = order(at);
    const std::string scale = pair('(', ',', ')', "(1,0)", at);
    // A wrong byte order or scale would be worse than none.
    if (byte_order.empty() || scale.empty()) return "";
    const std::string range = pair('[', '|', ']', "[0|0]", at);
    const std::string unit_text = unit(at);
    return "SG_ " + stretch(first, name_end) + " : " + text(bar - 1) + '|' + text(bar + 1) +
           byte_order + ' ' + scale + ' ' + (range.empty() ? "[0|0]" : range) + ' ' + unit_text +
           ' ' + receivers(at);
  }

  /// "VAL_ object pairs;" of value descriptions and tables; empty without an object.
  std::string descriptions() {
    std::string result = text(0);
    const bool has_message = has(1) && is_number(*tokens_[1]);
    if (has_message) result += ' ' + text(1);
    std::size_t at = find(is_name, 1);
    if (at > 3 || !has(at)) return "";
    result += ' ' + text(at);
    for (++at; has(at + 1); ++at) {
      if (!is_number(*tokens_[at]) || !is_text(*tokens_[at + 1])) continue;
      const bool is_negative = tokens_[at - 1]->is_mark('-');
      result += (is_negative ? " -" : " ") + text(at) + ' ' + quoted(at + 1);
      ++at;
    }
    return result + " ;";
  }

 private:
  bool has(std::size_t index) const { return index < tokens_.size(); }
  std::string text(std::size_t index) const {
    return std::string(document_.text_of(*tokens_[index]));
  }
  std::string whole(std::size_t index) const {
    const std::string_view digits = document_.text_of(*tokens_[index]);
    const auto value = lenient_number(digits);
    const bool fits = value && *value >= 0 && *value <= 4294967295.0;
    return fits ? text(index) : "";
  }
  /// The tokens as they stand in the file, with a blank where there is space between them.
  std::string stretch(std::size_t first, std::size_t end) const {
    std::string result;
    for (std::size_t i = first; i < end; ++i) {
      if (i != first && tokens_[i]->begin != tokens_[i - 1]->end) result += ' ';
      result += document_.text_of(*tokens_[i]);
    }
    return result;
  }
  std::string quoted(std::size_t index) const {
    return text(index) + (tokens_[index]->kind == TokenKind::kOpenText ? "\"" : "");
  }

  template <typename Predicate>
  std::size_t find(Predicate matches, std::size_t from) const {
    while (has(from) && !matches(*tokens_[from])) ++from;
    return std::min(from, tokens_.size());
  }
  std::size_t find_mark(char mark, std::size_t from) const {
    return find([mark](const Token& token) { return token.is_mark(mark); }, from);
  }

  /// Byte order, and the sign in front of the scale; empty when there is an "@" and no number
  /// behind it.
  std::string order(std::size_t& at) const {
    std::string result = "@1";
    if (has(at) && tokens_[at]->is_mark('@')) {
      if (!has(at + 1) || !is_number(*tokens_[at + 1])) return "";
      result = '@' + text(at + 1);
      at += 2;
    }
    const std::size_t end = std::min({find_mark('(', at), find_mark('[', at), find(is_text, at)});
    const std::size_t sign = find(is_sign, at);
    if (sign >= end) return result + '+';
    at = sign + 1;
    return result + text(sign);
  }

  /// Two numbers between brackets, in front of the unit.
  ///
  /// @param otherwise  what stands for a pair that is missing altogether
  /// @return empty for one that is there and cannot be read
  std::string pair(char open, char between, char close, std::string_view otherwise,
                   std::size_t& at) const {
    const std::size_t begin = find_mark(open, at);
    const std::size_t limit = find(is_text, at);
    if (std::min(begin, find_mark(close, at)) >= limit) return std::string(otherwise);
    std::size_t next = begin < limit ? begin + 1 : find(begins_number, at);
    const std::string first = number(next);
    const bool is_divided = has(next) && tokens_[next]->is_mark(between);
    const std::string second = is_divided ? number(++next) : "";
    at = next;
    if (first.empty() || second.empty()) return "";
    if (has(at) && tokens_[at]->is_mark(close)) ++at;
    return open + first + between + second + close;
  }

  /// With its sign; empty when none stands there.
  std::string number(std::size_t& at) const {
    const bool has_sign = has(at) && is_sign(*tokens_[at]);
    const std::size_t digits = at + (has_sign ? 1 : 0);
    if (!has(digits) || !is_number(*tokens_[digits])) return "";
    const std::string sign = has_sign ? text(at) : "";
    at = digits + 1;
    return sign + text(digits);
  }

  std::string unit(std::size_t& at) const {
    const std::size_t found = find(is_text, at);
    if (!has(found)) return "\"\"";
    at = found + 1;
    return quoted(found);
  }

  std::string receivers(std::size_t at) const {
    std::string result;
    for (; has(at); ++at) {
      const Token& token = *tokens_[at];
      if (is_name(token) && !begins_statement(token))
        result += (result.empty() ? "" : ",") + text(at);
    }
    return result.empty() ? ZELK_NO_NODE : result;
  }

  const Document& document_;
  std::vector<const Token*> tokens_;
};

std::string salvaged(const Document& document, const Statement& statement) {
  Salvage salvage(document, statement);
  switch (statement.kind) {
    case Word::kMessage:
      return salvage.message();
    case Word::kSignal:
      return salvage.signal();
    case Word::kDescriptions:
    case Word::kValueTable:
      return salvage.descriptions();
    case Word::kBitTiming:
      return "BS_:";
    default:
      return "";
  }
}

/// What cannot be mended yet stays. A keyword at its fault or behind would begin a statement, with
/// the next one for its object, as soon as what stands between them is mended or gone.
void drop_keywords(Mender& mender, const Fault& fault) {
  const Statement& statement = mender.statement(fault.statement);
  const std::uint32_t second = statement.first + 1;
  std::uint32_t begin = std::max(fault.token, second);
  while (begin > second && begins_statement(mender.token(begin - 1))) --begin;
  while (begin < statement.end && !begins_statement(mender.token(begin))) ++begin;
  if (begin >= statement.end) return;
  const std::string_view words =
      mender.document.source.text(mender.token(begin).begin, mender.token(statement.end - 1).end);
  mender.note(fault.kind, fault.statement, begin, statement.end,
              shown(words) + " dropped, it begins no statement");
  mender.erase_tokens(begin, statement.end);
}

}  // namespace

void recover(Mender& mender, const Fault& fault) {
  const Statement& statement = mender.statement(fault.statement);
  const Document& document = mender.document;
  const std::string text = salvaged(document, statement);
  if (!text.empty() && text != document.text_of(statement)) {
    const Span span{document.begin_of(statement), document.end_of(statement)};
    const std::string old = shown(document.text_of(statement));
    mender.note(fault.kind, span,
                old + " rewritten as " + shown(text) + ", expected " + std::string(fault.expected));
    mender.rewrite(fault.statement, text);
    return;
  }
  mender.has_new_statements = true;
  const bool is_object = statement.kind == Word::kMessage || statement.kind == Word::kSignal;
  const bool is_cut = fault.token == document.tokens.size();
  // Signals behind a message would come to the one in front of it.
  const bool has_signals = statement.kind == Word::kMessage &&
                           fault.statement + 1 < document.statements.size() &&
                           document.statements[fault.statement + 1].kind == Word::kSignal;
  const bool is_bare = is_object && !has_signals && statement.end == statement.first + 1;
  if (is_bare) return mender.drop(fault.kind, fault.statement, "nothing follows it");
  if (is_object && is_cut)
    return mender.drop(fault.kind, fault.statement, "the text ends before it is complete");
  if (is_object) return drop_keywords(mender, fault);
  mender.drop(fault.kind, fault.statement,
              fault.kind == FaultKind::kStray ? "it begins no statement"
                                              : "expected " + std::string(fault.expected));
}

}  // namespace zelk::check
