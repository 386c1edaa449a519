#include "check/repair/form_mends.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "base/characters.hpp"
#include "check/findings/sentences.hpp"
#include "check/repair/number_mends.hpp"

namespace zelk::check {

namespace {

void mend_final_line_feed(Mender& mender) {
  const std::uint32_t size = mender.document.source.size();
  mender.edits.insert_behind(size, std::string(line_end_of(mender.document.source.text())));
  mender.note(FaultKind::kNoFinalLineFeed, Span{size, size},
              "line feed added at the end of the file");
}

/// Bytes 0xFF between the token and the one before it, and at its begin.
void mend_end_byte(Mender& mender, const Fault& fault) {
  const Document& document = mender.document;
  const bool is_at_end = fault.token == document.tokens.size();
  const std::uint32_t begin = fault.token == 0 ? 0 : mender.token(fault.token - 1).end;
  const std::uint32_t end = is_at_end ? document.source.size() : mender.token(fault.token).end;
  std::uint64_t count = 0;
  Span place{end, begin};
  for (std::uint32_t at = begin; at < end; ++at) {
    if (document.source.text()[at] != '\xFF') continue;
    if (count++ == 0) place.begin = at;
    place.end = at + 1;
    mender.edits.replace(at, at + 1, " ");
  }
  if (count != 0)
    mender.note(FaultKind::kEndByte, place,
                counted(count, "byte") + " 0xFF removed, at which reading would end");
}

/// Where the text ends, a quote goes.
void mend_open_text(Mender& mender, const Fault& fault) {
  mender.insert_behind_token(fault.token, "\"");
  const Span end{mender.token(fault.token).end, mender.token(fault.token).end};
  mender.note(FaultKind::kOpenText, end, "quote added at the end of a text that had none",
              describe(mender.document, mender.statement(fault.statement)));
}

/// "';' behind the comment added", "'Ostrel__XXX' added for the transmitter's name".
std::string added(const Fault& fault) {
  const std::string expected(fault.expected);
  const std::string quoted = '\'' + std::string(fault.remedy) + '\'';
  return expected.starts_with(quoted) ? expected + " added" : quoted + " added for " + expected;
}

void mend_missing(Mender& mender, const Fault& fault) {
  const char first = fault.remedy.front();
  const bool is_word = is_name_character(first) || first == '"';
  const bool opens = first == '(' || first == '[';
  if (opens && fault.token < mender.document.tokens.size()) {
    mender.edits.insert_before(mender.token(fault.token).begin, std::string(fault.remedy));
  } else {
    const std::string blank = is_word ? " " : "";
    mender.insert_behind_token(fault.token - 1, blank + std::string(fault.remedy));
  }
  mender.note(FaultKind::kMissing, fault.statement, fault.token, fault.token, added(fault));
}

/// Whether the tokens behind a text are its rest, because a quote within it has no backslash.
bool is_rest_of_text(const Mender& mender, const Fault& fault) {
  return fault.token != 0 && mender.token(fault.token - 1).kind == TokenKind::kText &&
         mender.token(fault.token_end - 1).kind == TokenKind::kText;
}

void escape_quotes(Mender& mender, const Fault& fault) {
  const std::uint32_t begin = mender.token(fault.token - 1).begin + 1;
  const std::uint32_t end = mender.token(fault.token_end - 1).end - 1;
  const std::string_view text = mender.document.source.text();
  std::uint64_t count = 0;
  for (std::uint32_t at = begin; at < end; ++at) {
    if (text[at] != '"' || text[at - 1] == '\\') continue;
    mender.edits.insert_before(at, "\\");
    ++count;
  }
  mender.note(FaultKind::kSurplus, fault.statement, fault.token - 1, fault.token_end,
              "backslash added in front of " + counted(count, "quote") + " within a text");
}

void mend_surplus(Mender& mender, const Fault& fault) {
  if (is_rest_of_text(mender, fault)) return escape_quotes(mender, fault);
  const Token& first = mender.token(fault.token);
  const Token& last = mender.token(fault.token_end - 1);
  const std::string text = shown(mender.document.source.text(first.begin, last.end));
  const bool separates = first.is_mark(',') && fault.token_end == fault.token + 1;
  if (separates) {
    mender.edits.replace(first.begin, first.end, " ");
  } else {
    mender.erase_tokens(fault.token, fault.token_end);
  }
  mender.note(FaultKind::kSurplus, fault.statement, fault.token, fault.token_end,
              "surplus " + text + " removed");
}

void mend_unquoted(Mender& mender, const Fault& fault) {
  const std::string text(mender.text_of(fault.token));
  mender.replace_token(fault.token, '"' + text + '"');
  mender.note(FaultKind::kUnquotedText, fault.statement, fault.token, fault.token_end,
              "quotes added around " + shown(text));
}

void mend_comment_object(Mender& mender, const Fault& fault) {
  mender.edits.insert_before(mender.token(fault.token).begin, std::string(fault.remedy) + ' ');
  mender.note(FaultKind::kCommentObject, fault.statement, fault.token, fault.token_end,
              '"' + std::string(fault.remedy) + "\" added, the kind of the object");
}

}  // namespace

bool mend_form(Mender& mender, const Fault& fault) {
  switch (fault.kind) {
    case FaultKind::kNoFinalLineFeed:
      mend_final_line_feed(mender);
      return true;
    case FaultKind::kEndByte:
      mend_end_byte(mender, fault);
      return true;
    case FaultKind::kOpenText:
      mend_open_text(mender, fault);
      return true;
    case FaultKind::kMissing:
      mend_missing(mender, fault);
      return true;
    case FaultKind::kSurplus:
      mend_surplus(mender, fault);
      return true;
    case FaultKind::kOddNumber:
      mend_number(mender, fault);
      return true;
    case FaultKind::kUnquotedText:
      mend_unquoted(mender, fault);
      return true;
    case FaultKind::kCommentObject:
      mend_comment_object(mender, fault);
      return true;
    default:
      return false;
  }
}

}  // namespace zelk::check
