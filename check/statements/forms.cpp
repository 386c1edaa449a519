#include "check/statements/forms.hpp"

#include <algorithm>
#include <initializer_list>
#include <set>
#include <span>
#include <string_view>

#include "check/statements/token_reader.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

/// The forms of all statements, one function each. Names and order follow the order of a file.
class FormReader {
 public:
  explicit FormReader(Document& document) : document_(document), in_(document) {}

  void read() {
    document_.statements.reserve(document_.tokens.size() / 16 + 16);
    while (!in_.at_end()) statement();
  }

 private:
  void statement() {
    const std::uint32_t first = in_.at();
    const auto index = static_cast<std::uint32_t>(document_.statements.size());
    const Word kind = begins_statement(*in_.peek(0)) ? in_.peek(0)->word : Word::kNone;
    document_.statements.push_back({kind, true, first, first});
    in_.begin(index);
    if (kind != Word::kNone && kind != Word::kAnnounced) form_and_end(kind);
    const bool is_exact = in_.is_readable() && in_.at() != first && !in_.is_within_name();
    if (!is_exact) statement_again(kind, first);
    close(document_.statements[index]);
    if (kind == Word::kNewSymbols) announce(document_.statements[index]);
  }

  /// Reads a statement with its faults.
  void statement_again(Word kind, std::uint32_t first) {
    in_.begin_again(first);
    if (kind == Word::kNone) {
      in_.skip_to_statement();
      in_.fault(FaultKind::kStray, first, in_.at(), "a statement");
      return;
    }
    if (kind == Word::kAnnounced) {
      announced();
    } else {
      form_and_end(kind);
    }
    if (!in_.is_readable()) in_.skip_rest();
  }

  void form_and_end(Word kind) {
    in_.take();
    form(kind);
    if (in_.at_mark(';') && in_.is_readable()) surplus_semicolons();
  }

  /// The reader skips bytes, not tokens: the first `;` may stand in a text or in a comment.
  void announced() {
    const std::size_t begin = in_.peek(0)->end;
    if (next_semicolon_ < begin) next_semicolon_ = document_.source.text().find(';', begin);
    const std::size_t end = next_semicolon_;
    in_.take();
    if (end != std::string_view::npos)
      while (!in_.at_end() && in_.peek(0)->end <= end) in_.take();
    if (in_.at_mark(';') && in_.peek(0)->begin == end) return in_.take();
    in_.unreadable("';' behind what the reader skips, outside of texts and comments");
  }

  /// Names that the first list announces are no names from there on.
  void announce(const Statement& list) {
    if (has_announced_) return;
    has_announced_ = true;
    std::set<std::string_view> names;
    for (const Token& token : document_.tokens_of(list)) {
      if (token.kind == TokenKind::kName) names.insert(document_.announced_name(token));
    }
    if (names.empty()) return;
    for (Token& token : std::span(document_.tokens).subspan(list.end)) {
      if (token.kind != TokenKind::kName || !names.contains(document_.text_of(token))) continue;
      token.kind = TokenKind::kKeyword;
      token.word = Word::kAnnounced;
    }
  }

  void surplus_semicolons() {
    const std::uint32_t first = in_.at();
    while (in_.at_mark(';')) in_.take();
    in_.fault(FaultKind::kSurplus, first, in_.at(), "the next statement");
  }

  void close(Statement& statement) {
    statement.end = in_.at();
    statement.is_readable = in_.is_readable() && statement.kind != Word::kNone;
    const auto index = static_cast<std::uint32_t>(&statement - document_.statements.data());
    if (statement.kind == Word::kMessage) message_ = index;
    if (statement.kind == Word::kSignal) statement.owner = message_;
  }

  void form(Word kind) {
    switch (kind) {
      case Word::kVersion:
        return in_.text(Role::kVersion, "the version, a text");
      case Word::kNewSymbols:
        return new_symbols();
      case Word::kBitTiming:
        return bit_timing();
      case Word::kNodes:
        in_.mark(':', "':' behind \"BU_\"");
        return in_.blank_names(Role::kNode);
      case Word::kValueTable:
        in_.name(Role::kTable, "the value table's name");
        return descriptions();
      case Word::kMessage:
        return message();
      case Word::kSignal:
        return signal();
      case Word::kTransmitters:
        return transmitters();
      case Word::kVariable:
        return variable();
      case Word::kData:
      case Word::kVariableData:
        in_.name(Role::kVariableRef, "the environment variable's name");
        in_.mark(':', "':' behind the environment variable's name");
        in_.whole(Role::kDataSize, "the size of the data in bytes");
        return in_.semicolon("';' behind the size");
      case Word::kSignalType:
        return signal_type();
      case Word::kComment:
        return comment();
      default:
        return later_form(kind);
    }
  }

  void later_form(Word kind) {
    switch (kind) {
      case Word::kDefinition:
        if (is_any_word({Word::kNodes, Word::kMessage, Word::kSignal, Word::kVariable}))
          in_.take(Role::kObject);
        return definition();
      case Word::kRelationDefinition:
        optional_relation();
        return definition();
      case Word::kTypeDefinition:
        in_.text(Role::kAttributeRef, "the attribute's name, a text");
        return in_.semicolon("';' behind the attribute's name");
      case Word::kDefault:
        return default_value();
      case Word::kRelationDefault:
        optional_relation();
        return default_value();
      case Word::kAttribute:
        return attribute();
      case Word::kTypeAttribute:
        in_.text(Role::kAttributeRef, "the attribute's name, a text");
        in_.keyword(Word::kSignalType, "\"SGTYPE_\" behind the attribute's name");
        in_.name(Role::kTypeRef, "the signal type's name");
        return value_and_end(Words::kTaken);
      case Word::kRelationAttribute:
        return relation_attribute();
      case Word::kDescriptions:
        return value_descriptions();
      case Word::kCategoryDefinition:
        in_.signed_whole(Role::kCategoryNumber, "the category's number");
        in_.name(Role::kCategory, "the category's name");
        in_.whole(Role::kLevel, "the category's level");
        return in_.semicolon("';' behind the level");
      case Word::kCategory:
        return category();
      case Word::kFilter:
        return filter();
      default:
        return last_form(kind);
    }
  }

  void last_form(Word kind) {
    switch (kind) {
      case Word::kTypeReference:
        signal_of_message();
        in_.mark(':', "':' behind the signal's name");
        in_.name(Role::kTypeRef, "the signal type's name");
        return in_.semicolon("';' behind the signal type's name");
      case Word::kGroup:
        return group();
      case Word::kValueType:
        signal_of_message();
        in_.mark(':', "':' behind the signal's name");
        in_.whole(Role::kValueType, "the value type: 0 integer, 1 single, 2 double");
        return in_.semicolon("';' behind the value type");
      case Word::kTypeValueType:
        in_.name(Role::kTypeRef, "the signal type's name");
        in_.mark(':', "':' behind the signal type's name");
        in_.whole(Role::kValueType, "the value type: 0 integer, 1 single, 2 double");
        return in_.semicolon("';' behind the value type");
      default:
        return multiplexor_ranges();
    }
  }

  // --- Places 1 to 5 ---

  void new_symbols() {
    in_.mark(':', "':' behind \"NS_\"");
    std::set<std::string_view> names;
    while (in_.is_readable() && is_listed()) {
      const std::string_view name = document_.text_of(*in_.peek(0));
      if (names.contains(name))
        in_.fault(FaultKind::kSurplus, in_.at(), in_.at() + 1, "each name once");
      if (in_.at_kind(TokenKind::kName)) names.insert(document_.announced_name(*in_.peek(0)));
      in_.take(Role::kNewSymbol);
    }
  }

  /// Whether a name or keyword of the list stands here, and not a statement.
  bool is_listed() const {
    const Token* const token = in_.peek(0);
    if (!token || token->kind == TokenKind::kName) return token != nullptr;
    const bool may_be = token->kind == TokenKind::kKeyword && token->word > Word::kNewSymbols;
    const Token* const next = in_.peek(1);
    if (!may_be || !next) return may_be;
    const bool has_operand = is_number_or_text(*next) || is_object(*next);
    const bool has_name = next->kind == TokenKind::kName && in_.peek(2) &&
                          (is_number_or_text(*in_.peek(2)) || in_.peek(2)->is_mark(':'));
    return !in_.is_on_line_of_previous(in_.at() + 1) || !(has_operand || has_name);
  }

  static bool is_number_or_text(const Token& token) {
    return token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal ||
           token.kind == TokenKind::kText || token.kind == TokenKind::kOpenText;
  }

  static bool is_object(const Token& token) {
    return token.is(Word::kMessage) || token.is(Word::kSignal) || token.is(Word::kNodes) ||
           token.is(Word::kVariable);
  }

  void bit_timing() {
    in_.mark(':', "':' behind \"BS_\"");
    while (in_.is_readable() && in_.at_number()) {
      in_.count(Role::kBaudRate, "the baud rate");
      in_.mark(':', "':' behind the baud rate");
      in_.count(Role::kRegister, "the first bit timing register");
      in_.mark(',', "',' between the bit timing registers");
      in_.count(Role::kRegister, "the second bit timing register");
    }
  }

  /// Pairs of a number and a text, then the end.
  void descriptions() {
    while (in_.is_readable() && !in_.at_mark(';') && !in_.at_statement() && !in_.at_end()) {
      in_.real(Role::kNumber, "the number of a value description, or ';'");
      in_.text(Role::kText, "the text of the value description");
    }
    in_.semicolon("';' behind the value descriptions");
  }

  // --- Places 6 and 7 ---

  void message() {
    in_.whole(Role::kMessageId, "the message's identifier");
    in_.new_name(Role::kMessage, "the message's name");
    in_.mark(':', "':' behind the message's name");
    in_.count(Role::kSize, "the message's length in bytes");
    if (in_.is_readable() && !in_.at_name())
      return in_.missing("the transmitter's name", ZELK_NO_NODE);
    in_.name(Role::kTransmitter, "the transmitter's name");
  }

  void signal() {
    in_.new_name(Role::kSignal, "the signal's name");
    if (in_.at_name()) in_.name(Role::kIndicator, "the multiplexor indicator");
    in_.mark(':', "':' behind the signal's name");
    in_.count(Role::kStart, "the start bit");
    in_.mark('|', "'|' behind the start bit");
    segment();
    while (in_.is_readable() && in_.at_mark(':')) {
      in_.take();
      segment();
    }
    scale_and_range();
    if (in_.is_readable() && !in_.at_name())
      return in_.missing("the receivers' names", ZELK_NO_NODE);
    in_.comma_names(Role::kReceiver, "a receiver's name");
  }

  void segment() {
    in_.count(Role::kLength, "the length in bits");
    if (!in_.at_mark('@')) return;
    in_.take();
    in_.count(Role::kOrder, "the byte order: 0 Motorola, 1 Intel");
  }

  /// From the sign to the unit, of signals and signal types.
  void scale_and_range() {
    if (in_.at_mark('+') || in_.at_mark('-')) in_.take(Role::kSign);
    in_.mark('(', "'(' in front of the factor");
    factor_and_offset();
    in_.mark(')', "')' behind the offset");
    in_.mark('[', "'[' in front of the minimum");
    in_.real(Role::kMinimum, "the minimum", '|');
    in_.mark('|', "'|' between minimum and maximum");
    in_.real(Role::kMaximum, "the maximum", ']');
    in_.mark(']', "']' behind the maximum");
    in_.text(Role::kUnit, "the unit, a text");
  }

  /// With two or more commas, the first may be a decimal one.
  void factor_and_offset() {
    int commas = 0;
    for (std::uint32_t i = 0; in_.peek(i) && !in_.peek(i)->is_mark(')') && i < 12; ++i)
      commas += in_.peek(i)->is_mark(',') ? 1 : 0;
    in_.real(Role::kFactor, "the factor", commas > 1 ? ',' : '\0');
    in_.mark(',', "',' between factor and offset");
    in_.real(Role::kOffset, "the offset", ')');
  }

  void transmitters() {
    in_.whole(Role::kMessageRef, "the message's identifier");
    in_.mark(':', "':' behind the message's identifier");
    if (in_.is_readable() && in_.at_name()) in_.comma_names(Role::kTransmitter, "a node's name");
    in_.semicolon("';' behind the transmitters");
  }

  // --- Places 8 to 11 ---

  void variable() {
    in_.new_name(Role::kVariable, "the environment variable's name");
    in_.mark(':', "':' behind the environment variable's name");
    in_.whole(Role::kVariableType, "the type: 0 integer, 1 float, 2 string, 3 data");
    in_.mark('[', "'[' in front of the minimum");
    in_.real(Role::kMinimum, "the minimum", '|');
    in_.mark('|', "'|' between minimum and maximum");
    in_.real(Role::kMaximum, "the maximum", ']');
    in_.mark(']', "']' behind the maximum");
    in_.text(Role::kUnit, "the unit, a text");
    in_.real(Role::kInitial, "the initial value");
    in_.whole(Role::kVariableId, "the environment variable's number");
    in_.name(Role::kAccess, "the access type");
    in_.comma_names(Role::kAccessNode, "the name of an access node");
    in_.semicolon("';' behind the access nodes");
  }

  void signal_type() {
    in_.name(Role::kType, "the signal type's name");
    in_.mark(':', "':' behind the signal type's name");
    in_.whole(Role::kLength, "the length in bits");
    if (in_.at_mark('@')) {
      in_.take();
      in_.count(Role::kOrder, "the byte order: 0 Motorola, 1 Intel");
    }
    scale_and_range();
    const bool has_default = in_.at_number() || in_.at_mark('-') || in_.at_mark('+');
    if (in_.is_readable() && has_default) in_.real(Role::kInitial, "the default value");
    if (in_.is_readable() && is_table()) in_.name(Role::kTableRef, "the value table's name");
    if (in_.at_mark(';')) in_.take();
  }

  /// Behind a signal type may stand its table, or the next statement: a keyword is meant for a
  /// table where the signal type ends behind it.
  bool is_table() const {
    const Token* const next = in_.peek(1);
    return in_.at_name() && (!in_.at_kind(TokenKind::kKeyword) || (next && next->is_mark(';')));
  }

  void comment() {
    const bool has_object =
        object({Word::kMessage, Word::kSignal, Word::kNodes, Word::kVariable, Word::kSignalType});
    if (!has_object && (in_.at_number() || in_.at_name())) comment_without_object();
    in_.text(Role::kComment, "the comment, a text");
    in_.semicolon("';' behind the comment");
  }

  /// The keyword of an object and what refers to it.
  ///
  /// @return false, with nothing taken, when none of the kinds stands here
  bool object(std::initializer_list<Word> kinds) {
    if (!is_any_word(kinds)) return false;
    const Word kind = in_.peek(0)->word;
    in_.take(Role::kObject);
    if (kind == Word::kSignal) {
      signal_of_message();
    } else if (kind == Word::kMessage) {
      in_.whole(Role::kMessageRef, "the message's identifier");
    } else {
      in_.name(role_of(kind), "the object's name");
    }
    return true;
  }

  static Role role_of(Word object) {
    if (object == Word::kNodes) return Role::kNodeRef;
    return object == Word::kVariable ? Role::kVariableRef : Role::kTypeRef;
  }

  /// What follows tells what the comment is about.
  void comment_without_object() {
    const std::uint32_t first = in_.at();
    const bool has_number = in_.at_number();
    if (has_number) in_.whole(Role::kMessageRef, "the message's identifier");
    const bool has_name = in_.at_name();
    if (has_name) in_.name(has_number ? Role::kSignalRef : Role::kNodeRef, "the object's name");
    const Word object = !has_number ? Word::kNodes : has_name ? Word::kSignal : Word::kMessage;
    in_.fault(FaultKind::kCommentObject, first, in_.at(),
              "the kind of the object: \"BU_\", \"BO_\", \"SG_\" or \"EV_\"", spelling(object));
  }

  // --- Places 12 to 15 ---

  void optional_relation() {
    if (is_any_word({Word::kNodeSignal, Word::kNodeMessage, Word::kNodeVariable}))
      in_.take(Role::kObject);
  }

  void definition() {
    in_.text(Role::kAttribute, "the attribute's name, a text");
    if (!is_any_word({Word::kInt, Word::kHex, Word::kFloat, Word::kString, Word::kEnum}))
      return in_.unreadable("the value type: INT, HEX, FLOAT, STRING or ENUM");
    const Word type = in_.peek(0)->word;
    in_.take(Role::kValueType);
    if (type == Word::kEnum) {
      items();
    } else if (type != Word::kString && !in_.at_mark(';')) {
      in_.real(Role::kMinimum, "the minimum");
      in_.real(Role::kMaximum, "the maximum");
    }
    in_.semicolon("';' behind the definition");
  }

  void items() {
    if (!in_.at_text()) return;
    in_.text(Role::kItem, "an item, a text");
    while (in_.is_readable() && (in_.at_mark(',') || in_.at_text())) {
      if (in_.at_mark(',') && in_.peek(1) && in_.peek(1)->is_mark(';')) {
        in_.fault(FaultKind::kSurplus, in_.at(), in_.at() + 1, "';' behind the items");
        return in_.take();
      }
      in_.mark(',', "',' between items");
      in_.text(Role::kItem, "an item, a text");
    }
  }

  void default_value() {
    in_.text(Role::kAttributeRef, "the attribute's name, a text");
    if (in_.at_mark(';')) return in_.take();
    value_and_end(Words::kFault);
  }

  enum class Words { kFault, kTaken };

  /// @param words  whether a name, which a keyword is not, may be the value
  void value_and_end(Words words) {
    if (!in_.is_readable()) return;
    if (in_.at_text()) {
      in_.take(Role::kValue);
    } else if (in_.at_name() && !in_.at_number()) {
      in_.word(Role::kValue, words == Words::kTaken);
    } else {
      in_.real(Role::kValue, "the value: a number or a text");
    }
    in_.semicolon("';' behind the value");
  }

  void attribute() {
    in_.text(Role::kAttributeRef, "the attribute's name, a text");
    object({Word::kMessage, Word::kSignal, Word::kNodes, Word::kVariable});
    value_and_end(Words::kFault);
  }

  void relation_attribute() {
    in_.text(Role::kAttributeRef, "the attribute's name, a text");
    if (!is_any_word({Word::kNodeSignal, Word::kNodeMessage, Word::kNodeVariable}))
      return in_.unreadable("the relation: \"BU_SG_REL_\", \"BU_BO_REL_\" or \"BU_EV_REL_\"");
    const Word relation = in_.peek(0)->word;
    in_.take(Role::kObject);
    in_.name(Role::kNodeRef, "the node's name");
    if (relation == Word::kNodeSignal) {
      in_.keyword(Word::kSignal, "\"SG_\" behind the node's name");
      signal_of_message();
    } else if (relation == Word::kNodeMessage) {
      in_.whole(Role::kMessageRef, "the message's identifier");
    } else {
      in_.name(Role::kVariableRef, "the environment variable's name");
    }
    value_and_end(Words::kTaken);
  }

  // --- Places 16 to 23 ---

  void value_descriptions() {
    if (in_.at_number()) {
      signal_of_message();
    } else {
      in_.name(Role::kVariableRef, "a message's identifier or an environment variable's name");
    }
    descriptions();
  }

  void category() {
    if (!object({Word::kMessage, Word::kNodes, Word::kVariable}))
      return in_.unreadable("the kind of the object: \"BU_\", \"BO_\" or \"EV_\"");
    in_.signed_whole(Role::kCategoryRef, "the category's number");
    in_.semicolon("';' behind the category's number");
  }

  void filter() {
    in_.signed_whole(Role::kMode, "the filter's mode");
    in_.keyword(Word::kCategory, "\"CAT_\" behind the mode");
    while (in_.is_readable() && (in_.at_number() || in_.at_mark('-') || in_.at_mark('+')))
      in_.signed_whole(Role::kCategoryRef, "a category's number");
    in_.keyword(Word::kNodes, "\"BU_\" behind the categories");
    while (in_.is_readable() && (in_.at_text() || in_.at_name())) {
      if (in_.at_text()) {
        in_.take(Role::kNone);
      } else {
        in_.name(Role::kNodeRef, "a node's name");
      }
    }
    in_.semicolon("';' behind the nodes");
  }

  void group() {
    in_.whole(Role::kMessageRef, "the message's identifier");
    in_.name(Role::kGroup, "the signal group's name");
    in_.whole(Role::kRepetitions, "the number of repetitions");
    in_.mark(':', "':' in front of the signals");
    in_.blank_names(Role::kSignalRef);
    in_.semicolon("';' behind the signals");
  }

  void multiplexor_ranges() {
    signal_of_message();
    in_.name(Role::kMultiplexorRef, "the multiplexor's name");
    bool is_first = true;
    while (in_.is_readable() && !in_.at_mark(';') && !in_.at_statement() && !in_.at_end()) {
      if (!is_first) in_.mark(',', "',' between ranges");
      is_first = false;
      in_.whole(Role::kLow, "the lower end of a range");
      in_.mark('-', "'-' between the ends of a range");
      in_.whole(Role::kHigh, "the upper end of a range");
    }
    in_.semicolon("';' behind the ranges");
  }

  // --- Shared parts ---

  void signal_of_message() {
    in_.whole(Role::kMessageRef, "the message's identifier");
    in_.name(Role::kSignalRef, "the signal's name");
  }

  bool is_any_word(std::initializer_list<Word> words) const {
    return std::ranges::any_of(words, [this](Word word) { return in_.at_word(word); });
  }

  Document& document_;
  TokenReader in_;
  std::size_t next_semicolon_ = 0;  ///< the one behind the last announced name
  bool has_announced_ = false;
  std::uint32_t message_ = Statement::kNone;
};

}  // namespace

void read_statements(Document& document) { FormReader(document).read(); }

}  // namespace zelk::check
