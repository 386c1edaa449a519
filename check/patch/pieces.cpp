#include "check/patch/pieces.hpp"

#include <bit>
#include <string>
#include <string_view>

#include "base/numbers.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

/// Combines hashes.
class Hash {
 public:
  void add(std::uint64_t value) { value_ = hash_(value_ ^ hash_(value)); }
  void add(std::string_view text) { add(std::uint64_t{hash_(text)}); }
  void add(Word word) { add(static_cast<std::uint64_t>(word)); }
  void add(Role role) { add(static_cast<std::uint64_t>(role)); }
  std::uint64_t value() const { return value_ | 1U; }  // 0 stands for nothing

 private:
  SeededHash hash_;
  std::uint64_t value_ = 0;
};

/// Names and units that the reader cuts to 32 characters are compared as it keeps them.
std::string_view kept(std::string_view text, Role role) {
  constexpr std::size_t kKept = 32;
  switch (role) {
    case Role::kTable:
    case Role::kType:
    case Role::kGroup:
    case Role::kCategory:
    case Role::kAttribute:
    case Role::kAttributeRef:
    case Role::kUnit:
    case Role::kNewSymbol:
      return text.substr(0, kKept);
    default:
      return text;
  }
}

/// A text as the reader takes it: without escapes, and without carriage returns at line ends.
std::string meaning_of(std::string_view text) {
  std::string meaning;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view pair = text.substr(i, 2);
    if (pair != "\\\"" && pair != "\r\n") meaning += text[i];
  }
  return meaning;
}

bool is_number(const Token& token) {
  return token.kind == TokenKind::kWhole || token.kind == TokenKind::kReal;
}

/// Whether the reader passes over a token: what is no statement's business, and the name that
/// stands for no node in the list of nodes.
bool is_passed_over(const Document& document, const Token& token) {
  return token.kind == TokenKind::kAbsorbed ||
         (token.role == Role::kNode && document.text_of(token) == ZELK_NO_NODE);
}

bool is_sign(const Token& token) { return token.is_mark('-') || token.is_mark('+'); }

void add_meaning(Hash& hash, const Document& document, const Piece& piece) {
  const Token& last = document.tokens[piece.end - 1];
  const std::string_view text = document.text_of(last);
  if (is_number(last)) {
    const double number = literal_to_double(text);
    const bool is_negative = document.tokens[piece.first].is_mark('-') && number != 0;
    hash.add(std::bit_cast<std::uint64_t>(is_negative ? -number : number));
  } else if (last.kind == TokenKind::kText) {
    hash.add(kept(meaning_of(document.content_of(last)), last.role));
  } else {
    hash.add(kept(text, last.role));
  }
}

Word kind_of_subject(Word kind) { return kind == Word::kData ? Word::kVariableData : kind; }

/// Whether a token of this role says what the statement is about.
bool tells_subject(Word kind, Role role) {
  switch (role) {
    case Role::kMessageRef:
    case Role::kMessageId:
    case Role::kSignal:
    case Role::kVariable:
    case Role::kTable:
    case Role::kType:
    case Role::kGroup:
    case Role::kVariableRef:
    case Role::kAttribute:
    case Role::kAttributeRef:
    case Role::kObject:
      return true;
    case Role::kCategoryNumber:
      return kind == Word::kCategoryDefinition;
    case Role::kSignalRef:
      return kind != Word::kGroup;
    case Role::kNodeRef:
      return kind != Word::kFilter;
    case Role::kTypeRef:
      return kind != Word::kTypeReference;
    default:
      return false;
  }
}

}  // namespace

std::vector<Piece> pieces_of(const Cast& cast, std::uint32_t statement) {
  const Document& document = cast.document();
  const Statement& place = document.statements[statement];
  std::vector<Piece> pieces;
  for (std::uint32_t first = place.first; first < place.end; ++first) {
    const Token& token = document.tokens[first];
    if (is_passed_over(document, token)) continue;
    const bool has_number =
        is_sign(token) && first + 1 < place.end && is_number(document.tokens[first + 1]);
    const std::uint32_t end = first + (has_number ? 2 : 1);
    Piece piece{first, end, cast.object(statement, document.tokens[end - 1]), 0, 0};
    const Token& last = document.tokens[end - 1];
    Hash hash;
    hash.add(last.role);
    if (last.role == Role::kNone) hash.add(document.text_of(last));
    piece.shape = hash.value();
    if (piece.object != Cast::kNone) {
      hash.add(piece.object);
    } else {
      add_meaning(hash, document, piece);
    }
    piece.value = hash.value();
    pieces.push_back(piece);
    first = end - 1;
  }
  return pieces;
}

std::uint64_t subject_of(const Cast& cast, std::uint32_t statement) {
  const Document& document = cast.document();
  const Statement& place = document.statements[statement];
  const bool is_known = place.is_readable && place.kind != Word::kAnnounced;
  if (!is_known) return 0;
  Hash hash;
  hash.add(kind_of_subject(place.kind));
  for (const Token& token : document.tokens_of(place)) {
    if (!tells_subject(place.kind, token.role)) continue;
    hash.add(token.role);
    const std::uint32_t object = cast.object(statement, token);
    if (object != Cast::kNone) {
      hash.add(object);
    } else {
      hash.add(kept(document.content_of(token), token.role));
    }
  }
  return hash.value();
}

}  // namespace zelk::check
