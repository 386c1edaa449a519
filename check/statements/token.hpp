/// \file
/// What the text of a file consists of: tokens, each with its place and its part in the statement.

#ifndef ZELK_CHECK_STATEMENTS_TOKEN_HPP
#define ZELK_CHECK_STATEMENTS_TOKEN_HPP

#include <cstdint>
#include <string_view>

namespace zelk::check {

/// The keywords. A statement's kind is the keyword that begins it.
enum class Word : std::uint8_t {
  kNone,  ///< no keyword; a statement of this kind is text that begins none
  kMessage,
  kSignal,
  kNodes,
  kBitTiming,
  kVersion,
  kVariable,
  kInt,
  kHex,
  kFloat,
  kString,
  kEnum,
  kNewSymbols,
  kSymbolDescription,
  kComment,
  kDefinition,
  kAttribute,
  kDescriptions,
  kCategoryDefinition,
  kCategory,
  kFilter,
  kDefault,
  kData,
  kVariableData,
  kSignalType,
  kSignalTypeValue,
  kTypeDefinition,
  kTypeAttribute,
  kTypeReference,
  kValueTable,
  kGroup,
  kValueType,
  kTypeValueType,
  kTransmitters,
  kRelationDefinition,
  kRelationAttribute,
  kRelationDefault,
  kNodeSignal,
  kNodeVariable,
  kNodeMessage,
  kMultiplexorRanges,
  kAnnounced,  ///< a name that "NS_" announces: the reader skips from there through the next `;`
};

/// As it is spelled; empty for those that are no keywords.
std::string_view spelling(Word word);

/// The keyword of this spelling, case included; `kNone` when it is none.
Word find_word(std::string_view name);

/// Place of its statements in the order of a file, from 1 to 23; 0 when it begins none.
int place_of(Word word);

enum class TokenKind : std::uint8_t {
  kName,
  kKeyword,
  kWhole,      ///< digits
  kReal,       ///< digits with a fraction, an exponent or both
  kText,       ///< between double quotes, which belong to the token
  kOpenText,   ///< a text that lacks its second quote
  kMark,       ///< any other character
  kOddName,    ///< stands where a name must, but no name is spelled so
  kOddNumber,  ///< stands where a number must, but no number is spelled so
  kAbsorbed,   ///< belongs to an odd name or number before it, which covers its place
};

/// What a token is in its statement.
enum class Role : std::uint8_t {
  kNone,
  // Names that the statement introduces.
  kMessage,
  kSignal,
  kNode,
  kVariable,
  kTable,
  kType,
  kGroup,
  kCategory,
  kAttribute,  ///< a text
  kNewSymbol,
  // Names and numbers that refer to what another statement introduces.
  kMessageRef,  ///< the identifier
  kSignalRef,
  kMultiplexorRef,
  kNodeRef,
  kTransmitter,
  kReceiver,
  kAccessNode,
  kVariableRef,
  kTableRef,
  kTypeRef,
  kAttributeRef,  ///< a text
  kCategoryRef,
  // The rest.
  kMessageId,
  kSize,
  kIndicator,
  kStart,
  kLength,
  kOrder,
  kSign,
  kFactor,
  kOffset,
  kMinimum,
  kMaximum,
  kUnit,
  kVersion,
  kBaudRate,
  kRegister,
  kVariableType,
  kInitial,
  kVariableId,
  kAccess,
  kDataSize,
  kComment,
  kObject,     ///< keyword that tells what kind of object follows
  kValueType,  ///< keyword of a definition, or the number of "SIG_VALTYPE_"
  kItem,
  kValue,
  kNumber,  ///< of a value description
  kText,    ///< of a value description
  kCategoryNumber,
  kLevel,
  kMode,
  kRepetitions,
  kLow,
  kHigh,
};

struct Token {
  std::uint32_t begin;
  std::uint32_t end;
  TokenKind kind;
  Word word = Word::kNone;  ///< of a keyword
  char mark = 0;            ///< of a mark
  Role role = Role::kNone;

  bool is_mark(char c) const { return kind == TokenKind::kMark && mark == c; }
  bool is(Word keyword) const { return kind == TokenKind::kKeyword && word == keyword; }
};

/// Whether the token is a keyword that begins statements, or an announced name.
inline bool begins_statement(const Token& token) {
  return token.kind == TokenKind::kKeyword &&
         (place_of(token.word) != 0 || token.word == Word::kAnnounced);
}

}  // namespace zelk::check

#endif
