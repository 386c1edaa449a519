#include "check/faults/fault_words.hpp"

#include <algorithm>

#include "check/findings/sentences.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kMostQuoted = 60;

/// In double quotes, on one line; long texts are cut.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text.substr(0, kMostQuoted)) {
    const bool is_space = static_cast<unsigned char>(c) <= ' ';
    if (!is_space) result += c;
    if (is_space && result.back() != ' ') result += ' ';
  }
  return result + (text.size() > kMostQuoted ? "...\"" : "\"");
}

std::string quoted(Word word) { return quoted(spelling(word)); }

bool is_missing(FaultKind kind) {
  return kind == FaultKind::kMissing || kind == FaultKind::kMissingBitTiming ||
         kind == FaultKind::kMissingNodes || kind == FaultKind::kNoFinalLineFeed;
}

/// "node", "message", ... of a reference, which is none to a signal or attribute.
std::string_view kind_of_object(FaultKind kind) {
  switch (kind) {
    case FaultKind::kUnknownMessage:
      return "message ";
    case FaultKind::kUnknownNode:
      return "node ";
    case FaultKind::kUnknownVariable:
      return "environment variable ";
    case FaultKind::kUnknownTable:
      return "value table ";
    case FaultKind::kUnknownType:
      return "signal type ";
    default:
      return "category ";
  }
}

/// The first such byte in front of the token or in it, outside of comments.
Span span_of_byte(const Document& document, const Fault& fault, char byte) {
  const auto& tokens = document.tokens;
  const bool is_within = fault.token != fault.token_end;
  const bool is_last = fault.token >= tokens.size();
  std::uint32_t begin = fault.token == 0 ? 0 : tokens[fault.token - 1].end;
  if (is_within) begin = tokens[fault.token].begin;
  const std::uint32_t end = is_last ? document.source.size() : tokens[fault.token].end;
  const std::string_view text = document.source.text(begin, end);
  std::size_t at = 0;
  while (at < text.size() && text[at] != byte) {
    const bool is_comment = !is_within && text.substr(at).starts_with("//");
    at = is_comment ? std::min(text.find('\n', at), text.size()) : at + 1;
  }
  const std::uint32_t place = begin + static_cast<std::uint32_t>(at);
  return {place, std::min(place + 1, end)};
}

}  // namespace

Span span_of(const Document& document, const Fault& fault) {
  if (fault.kind == FaultKind::kNulByte) return span_of_byte(document, fault, '\0');
  if (fault.kind == FaultKind::kEndByte) return span_of_byte(document, fault, '\xFF');
  const auto& tokens = document.tokens;
  const std::uint32_t size = document.source.size();
  if (fault.token == fault.token_end || fault.token >= tokens.size()) {
    const bool is_first = fault.token == 0 || !is_missing(fault.kind);
    std::uint32_t at = fault.token < tokens.size() ? tokens[fault.token].begin : size;
    if (!is_first) at = tokens[std::min<std::size_t>(fault.token, tokens.size()) - 1].end;
    return {at, at};
  }
  const std::uint32_t end = std::min(fault.token_end, static_cast<std::uint32_t>(tokens.size()));
  return {tokens[fault.token].begin, tokens[end - 1].end};
}

Finding FaultWords::finding(const Fault& fault) {
  Finding finding;
  finding.severity = fault.is_accepted ? Severity::kWarning : Severity::kError;
  finding.rule = name_of(fault.kind);
  finding.span = span_of(document_, fault);
  finding.message = message(fault);
  finding.cause = cause(fault);
  const bool is_section =
      fault.kind == FaultKind::kMissingBitTiming || fault.kind == FaultKind::kMissingNodes;
  if (fault.statement != kNoStatement && !is_section && kind_of(fault.statement) != Word::kNone)
    finding.statement = describe(document_, document_.statements[fault.statement]);
  if (fault.related != kNoStatement)
    finding.related.push_back({keyword_span(fault.related), related_words(fault)});
  return finding;
}

// --- Pieces ---

std::string FaultWords::text(const Fault& fault) const {
  return std::string(document_.text_of(token(fault)));
}

/// A number has its sign in front.
std::string FaultWords::content(const Fault& fault) const {
  const bool is_number =
      token(fault).kind == TokenKind::kWhole || token(fault).kind == TokenKind::kReal;
  const bool is_negative = is_number && document_.tokens[fault.token - 1].is_mark('-');
  return (is_negative ? "-" : "") + std::string(document_.content_of(token(fault)));
}

std::string FaultWords::found(const Fault& fault) const {
  if (fault.token >= document_.tokens.size()) return "found the end of the file";
  const std::uint32_t end = std::max(fault.token + 1, fault.token_end);
  const std::string_view whole =
      document_.source.text(document_.tokens[fault.token].begin, document_.tokens[end - 1].end);
  const std::string_view line = whole.substr(0, whole.find_first_of("\r\n"));
  const bool is_text = !whole.empty() && whole.front() == '"';
  return "found " +
         (is_text ? "the text " + quoted(whole.substr(1, whole.size() - 2)) : quoted(line));
}

std::string FaultWords::line_of(std::uint32_t statement) const {
  const std::uint32_t begin = document_.begin_of(document_.statements[statement]);
  return "line " + std::to_string(document_.source.position(begin).line);
}

Span FaultWords::keyword_span(std::uint32_t statement) const {
  const Token& keyword = document_.tokens[document_.statements[statement].first];
  return {keyword.begin, keyword.end};
}

// --- Messages ---

std::string FaultWords::message(const Fault& fault) const {
  const std::string expected(fault.expected);
  switch (fault.kind) {
    case FaultKind::kMissing:
    case FaultKind::kUnreadable:
    case FaultKind::kStray:
    case FaultKind::kOddNumber:
    case FaultKind::kUnquotedText:
    case FaultKind::kCommentObject:
      return "expected " + expected + ", " + found(fault);
    case FaultKind::kSurplus:
      return "expected " + expected + ", " + found(fault) + " too many";
    case FaultKind::kOddName:
      return quoted(text(fault)) + " is no name";
    case FaultKind::kKeywordName:
      return "the keyword " + quoted(text(fault)) + " cannot be a name";
    case FaultKind::kSkipped:
      return "statements that begin with " + quoted(text(fault)) + " are skipped";
    case FaultKind::kOrder:
      return quoted(text(fault)) + " is out of order";
    case FaultKind::kMissingBitTiming:
      return "the file has no section \"BS_:\"";
    case FaultKind::kMissingNodes:
      return "the file has no section \"BU_:\"";
    case FaultKind::kDoubledSection:
      return "second section " + quoted(text(fault));
    case FaultKind::kWrongValue:
    case FaultKind::kAccessCode:
      return message_of_value(fault);
    case FaultKind::kIndicator:
    case FaultKind::kSegments:
    case FaultKind::kMultiplexors:
    case FaultKind::kCircle:
    case FaultKind::kDoubledMessage:
    case FaultKind::kDoubledSignal:
      return message_of_signal(fault);
    case FaultKind::kUnknownMessage:
    case FaultKind::kUnknownSignal:
    case FaultKind::kUnknownNode:
    case FaultKind::kUnknownVariable:
    case FaultKind::kUnknownTable:
    case FaultKind::kUnknownType:
    case FaultKind::kUnknownCategory:
    case FaultKind::kUnknownAttribute:
    case FaultKind::kUnknownLink:
      return message_of_reference(fault);
    default:
      return message_of_characters(fault);
  }
}

std::string FaultWords::message_of_characters(const Fault& fault) const {
  switch (fault.kind) {
    case FaultKind::kNoFinalLineFeed:
      return "the file does not end in a line feed";
    case FaultKind::kNulByte:
      return fault.token != fault.token_end ? "the text is cut at its NUL byte" : "a NUL byte";
    case FaultKind::kEndByte:
      return "the byte 0xFF ends the file for the reader";
    case FaultKind::kOpenText:
      return "the text has no second quote";
    case FaultKind::kOddSpace:
      return "a blank outside ASCII directly behind a name";
    case FaultKind::kUtf16:
      return "the file is in UTF-16";
    default:
      return "a name or number of " + std::to_string(text(fault).size()) + " characters";
  }
}

std::string FaultWords::message_of_reference(const Fault& fault) const {
  const std::string_view name = document_.content_of(token(fault));
  if (fault.kind == FaultKind::kUnknownSignal) {
    return describe(document_, document_.statements[fault.related]) + " has no signal " +
           std::string(name);
  }
  if (fault.kind == FaultKind::kUnknownLink)
    return "the relation is to node " + std::string(name) + ", which is not linked to the object";
  if (fault.kind == FaultKind::kUnknownAttribute)
    return "attribute " + quoted(name) + " is not defined";
  return std::string(kind_of_object(fault.kind)) + content(fault) + " is not defined";
}

std::string FaultWords::message_of_value(const Fault& fault) const {
  if (fault.kind == FaultKind::kAccessCode)
    return "expected \"DUMMY_NODE_OSTREL\" and a hexadecimal code, " + found(fault);
  if (!fault.expected.empty())
    return "expected " + std::string(fault.expected) + ", " + found(fault);
  const std::string value = quoted(content(fault));
  if (fault.related != kNoStatement) {
    const Statement& definition = document_.statements[fault.related];
    const Token* const type = document_.find(definition, Role::kValueType);
    const std::string attribute = quoted(document_.text_of(definition, Role::kAttribute));
    if (type && type->word == Word::kEnum) return value + " is no item of attribute " + attribute;
    return value + " is no number, which attribute " + attribute + " wants";
  }
  return token(fault).role == Role::kItem ? "an item with a line end"
                                          : value + " cannot be the name of the object";
}

std::string FaultWords::message_of_signal(const Fault& fault) const {
  const std::string name = text(fault);
  switch (fault.kind) {
    case FaultKind::kIndicator:
      return "wrong multiplexor indicator " + quoted(name);
    case FaultKind::kSegments:
      return token(fault).role == Role::kOrder ? "wrong byte order " + name
                                               : "wrong length of " + name + " bits";
    case FaultKind::kMultiplexors:
      return "nothing says which multiplexor selects the signal";
    case FaultKind::kCircle:
      return "multiplexor " + name + " selects itself";
    case FaultKind::kDoubledMessage:
      return "another message with identifier " + name;
    default:
      return "another signal " + name + " of the message";
  }
}

// --- Causes ---

std::string FaultWords::cause(const Fault& fault) {
  switch (fault.kind) {
    case FaultKind::kNoFinalLineFeed:
      return "a name or comment must not end with the file";
    case FaultKind::kEndByte:
      return "nothing behind it is read";
    case FaultKind::kTooLong:
      return "names and numbers have at most 1023 characters";
    case FaultKind::kUtf16:
      return "save it in UTF-8, or convert it: iconv -f UTF-16 -t UTF-8";
    case FaultKind::kStray:
      return cause_of_stray(fault);
    case FaultKind::kOddName:
      return fault.is_accepted
                 ? "bytes outside ASCII are blanks, and only what follows is the name"
                 : "names consist of ASCII letters, digits and \"_\", and begin with no digit";
    case FaultKind::kCommentObject:
      return "did you mean " + quoted(std::string(fault.remedy) + " " + text(fault)) + "?";
    case FaultKind::kSkipped:
      return "the list \"NS_\" announces the name";
    case FaultKind::kOddNumber:
      return cause_of_number(fault);
    case FaultKind::kOrder:
      return cause_of_order(fault);
    case FaultKind::kMissingBitTiming:
      return "every file has one, if empty, in front of \"BU_:\"";
    case FaultKind::kMissingNodes:
      return "every file has one, if empty, behind \"BS_:\"";
    case FaultKind::kWrongValue:
    case FaultKind::kAccessCode:
    case FaultKind::kUnknownLink:
      return cause_of_value(fault);
    case FaultKind::kIndicator:
      return "\"M\" marks a multiplexor, \"m3\" a signal for its value 3, \"m3M\" both; one letter "
             "in a "
             "message";
    case FaultKind::kSegments:
      return "signals have up to two segments, each of 1 bit or more and byte order 0 to 4";
    case FaultKind::kMultiplexors:
      return "the message needs one multiplexor, or \"SG_MUL_VAL_\" for each signal";
    default:
      return suggestions_.for_reference(fault);
  }
}

std::string FaultWords::cause_of_stray(const Fault& fault) const {
  if (token(fault).kind == TokenKind::kName) return suggestions_.for_keyword(text(fault));
  const bool is_whole = document_.statements.size() == 1;
  return is_whole ? "no statement of a database is in the file" : "";
}

std::string FaultWords::cause_of_order(const Fault& fault) const {
  if (fault.related == kNoStatement) return "a signal belongs behind its message, \"BO_\"";
  const bool is_late = fault.related < fault.statement;
  const Word there = kind_of(fault.related);
  const std::string other = quoted(there == Word::kSignal ? Word::kMessage : there);
  return "statements " + quoted(kind_of(fault.statement)) + " must stand " +
         (is_late ? "in front of " : "behind ") + other + "; this one stands " +
         (is_late ? "behind " : "in front of ") + line_of(fault.related);
}

std::string FaultWords::cause_of_number(const Fault& fault) const {
  switch (token(fault).role) {
    case Role::kSize:
    case Role::kStart:
    case Role::kOrder:
    case Role::kBaudRate:
    case Role::kRegister:
      return "it is a whole number from 0 to 32767";
    case Role::kLength:
      return "it is a whole number from 1 to 32767";
    case Role::kFactor:
    case Role::kOffset:
    case Role::kMinimum:
    case Role::kMaximum:
    case Role::kInitial:
    case Role::kValue:
    case Role::kNumber:
      return "numbers are spelled like 5, -0.25 or 1E-3";
    default:
      return "it is a whole number from 0 to 4294967295";
  }
}

std::string FaultWords::cause_of_value(const Fault& fault) {
  if (fault.kind == FaultKind::kAccessCode) return "the code is taken to be 0";
  if (fault.kind == FaultKind::kUnknownLink) return "the value is dropped";
  if (fault.related != kNoStatement)
    return suggestions_.for_item(fault.related, document_.content_of(token(fault)));
  if (!fault.is_accepted) return {};
  if (token(fault).role == Role::kRegister) return "its low 8 bits are kept";
  return token(fault).role == Role::kItem ? "it becomes a blank" : "the value is dropped";
}

std::string FaultWords::related_words(const Fault& fault) const {
  const Statement& there = document_.statements[fault.related];
  switch (fault.kind) {
    case FaultKind::kOrder:
      return describe(document_, there) + " is here";
    case FaultKind::kDoubledSection:
    case FaultKind::kDoubledMessage:
    case FaultKind::kDoubledSignal:
      return "the first one is here";
    case FaultKind::kCircle:
      return describe(document_, there) + " selects it";
    default:
      return describe(document_, there) + " is here";
  }
}

}  // namespace zelk::check
