/// \file
/// What is wrong with a text: why the reader would refuse it, or read something else than it says.

#ifndef ZELK_CHECK_STATEMENTS_FAULT_HPP
#define ZELK_CHECK_STATEMENTS_FAULT_HPP

#include <cstdint>
#include <string_view>

namespace zelk::check {

enum class FaultKind : std::uint8_t {
  // Characters
  kNoFinalLineFeed,  ///< a name or comment ends with the file
  kNulByte,
  kEndByte,   ///< 0xFF where a token may start ends the reading
  kOpenText,  ///< a text without its second quote
  kOddSpace,  ///< a blank outside ASCII directly behind a name, where the reader takes none
  kTooLong,   ///< a name or number of more characters than the reader takes
  // Forms of statements
  kMissing,        ///< `remedy` must stand in front of the token
  kSurplus,        ///< the tokens do not belong there
  kStray,          ///< text that begins no statement
  kUnreadable,     ///< the statement cannot be read from the token on
  kOddName,        ///< a name with characters that names do not have
  kKeywordName,    ///< a keyword for a name
  kOddNumber,      ///< a number that is not spelled so, or is of the wrong kind
  kUnquotedText,   ///< a name where a text must stand
  kCommentObject,  ///< a comment that lacks the kind of its object, which is `remedy`
  kSkipped,        ///< a statement that begins with an announced name; the reader skips it
  // Order of statements
  kOrder,
  kMissingBitTiming,
  kMissingNodes,
  kDoubledSection,  ///< another "VERSION", "NS_", "BS_" or "BU_"
  // References
  kUnknownMessage,
  kUnknownSignal,
  kUnknownNode,
  kUnknownVariable,
  kUnknownTable,
  kUnknownType,
  kUnknownCategory,
  kUnknownAttribute,
  kUnknownLink,  ///< a relation to a node which does not receive, send or access the object
  // Values
  kWrongValue,  ///< not of the attribute's type, not in its ENUM, or out of the statement's range
  kAccessCode,
  // Signals
  kIndicator,
  kSegments,
  kMultiplexors,  ///< several without ranges, or none
  kCircle,
  // Doubled names and identifiers, which the reader takes
  kDoubledMessage,
  kDoubledSignal,
  // Mends of what is no fault in itself
  kUtf16,             ///< a text in UTF-16
  kLineEnds,          ///< carriage returns where lines end
  kNoNode,            ///< a node that stands for none, as the user says
  kDoubledStatement,  ///< one that says the same of its object as another one, word for word
  kRefused,  ///< the reader refuses a statement, for a reason that no search for faults has found
};

/// A fault, and its place.
struct Fault {
  static constexpr std::uint32_t kNoStatement = 0xFFFFFFFF;

  FaultKind kind;
  std::uint32_t statement;      ///< index; `kNoStatement` when it is about the file
  std::uint32_t token;          ///< first token at fault, or the one in front of which something is
                                ///< missing; may be the number of all tokens: the end of the file
  std::uint32_t token_end;      ///< behind the last token at fault
  std::string_view expected{};  ///< what must stand there, in words: "':' behind the message's
                                ///< name"; static text
  std::string_view remedy{};    ///< text that is missing; static
  std::uint32_t related = kNoStatement;  ///< another statement that has to do with it
  bool is_accepted = false;              ///< the reader takes it: the file is read nonetheless
};

/// By which a kind is switched off and reported: "unknown-message". Empty for numbers of no kind.
std::string_view name_of(FaultKind kind);

}  // namespace zelk::check

#endif
