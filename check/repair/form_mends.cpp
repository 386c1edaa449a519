#include "check/repair/form_mends.hpp"

#include <algorithm>
#include <string>

#include "base/characters.hpp"
#include "check/findings/sentences.hpp"
#include "check/repair/number_mends.hpp"

namespace zelk::check {

namespace {

void mend_final_line_feed(Mender& mender) {
  const std::uint32_t size = mender.document.source.size();
  mender.needs_line_feed = true;
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
  if (count != 0) {  // none within a name that several tokens make up
    mender.note(FaultKind::kEndByte, place,
                counted(count, "byte") + " 0xFF removed, at which reading would end");
  }
}

/// The reader takes a plain blank behind a name, and then any others.
void mend_odd_space(Mender& mender, const Fault& fault) {
  mender.insert_behind_token(fault.token, " ");
  const std::uint32_t end = mender.token(fault.token).end;
  mender.note(FaultKind::kOddSpace, Span{end, end},
              "plain blank added between a name and a blank outside ASCII");
}

/// "';' behind the comment added", "'Ostrel__XXX' added for the transmitter's name".
std::string added(const Fault& fault) {
  const std::string expected(fault.expected);
  const std::string quoted = '\'' + std::string(fault.remedy) + '\'';
  return expected.starts_with(quoted) ? expected + " added" : quoted + " added for " + expected;
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

FormMends::FormMends(Mender& mender, std::span<const Fault> faults) : mender_(mender) {
  const Fault* missing = nullptr;
  for (const Fault& fault : faults) {
    if (fault.kind == FaultKind::kMissing) missing = &fault;
    if (fault.kind != FaultKind::kSurplus || fault.token == fault.token_end) continue;
    const std::uint32_t last = fault.token_end - 1;
    const bool lacks_text = missing && missing->token == fault.token && missing->remedy == "\"\"";
    if (lacks_text && mender.token(last).kind == TokenKind::kText) late_texts_.insert(fault.token);
    if (mender.token(last).kind != TokenKind::kOpenText) continue;
    surplus_texts_.insert(last);
    if (lacks_text && mender.text_of(last) == "\"") beginnings_.insert(fault.token);
  }
}

void FormMends::mend(const Fault& fault) {
  switch (fault.kind) {
    case FaultKind::kNoFinalLineFeed:
      return mend_final_line_feed(mender_);
    case FaultKind::kEndByte:
      return mend_end_byte(mender_, fault);
    case FaultKind::kOddSpace:
      return mend_odd_space(mender_, fault);
    case FaultKind::kOpenText:
      return mend_open_text(fault);
    case FaultKind::kMissing:
      return mend_missing(fault);
    case FaultKind::kSurplus:
      return mend_surplus(fault);
    case FaultKind::kTooLong:
    case FaultKind::kOddNumber:
      return mend_number(mender_, fault);
    case FaultKind::kUnquotedText:
      return mend_unquoted(mender_, fault);
    case FaultKind::kCommentObject:
      return mend_comment_object(mender_, fault);
    default:
      return;
  }
}

void FormMends::mend_open_text(const Fault& fault) {
  if (surplus_texts_.contains(fault.token)) return;
  mender_.insert_behind_token(fault.token, "\"");
  const std::uint32_t end = mender_.token(fault.token).end;
  mender_.note(FaultKind::kOpenText, Span{end, end},
               "quote added at the end of a text that had none",
               describe(mender_.document, mender_.statement(fault.statement)));
}

void FormMends::mend_missing(const Fault& fault) {
  if (late_texts_.contains(fault.token)) return;
  if (beginnings_.contains(fault.token)) {
    mender_.edits.insert_before(mender_.token(fault.token).begin, "\"");
    return mender_.note(FaultKind::kMissing, fault.statement, fault.token, fault.token,
                        "quote added at the begin of a text that had none");
  }
  const char first = fault.remedy.front();
  const bool is_word = is_name_character(first) || first == '"';
  const bool opens = first == '(' || first == '[';
  if (opens && fault.token < mender_.document.tokens.size()) {
    mender_.edits.insert_before(mender_.token(fault.token).begin, std::string(fault.remedy));
  } else {
    mender_.insert_behind_token(fault.token - 1, (is_word ? " " : "") + std::string(fault.remedy));
  }
  mender_.note(FaultKind::kMissing, fault.statement, fault.token, fault.token, added(fault));
}

void FormMends::mend_surplus(const Fault& fault) {
  if (beginnings_.contains(fault.token)) return;
  if (is_rest_of_text(fault)) return escape_quotes(fault);
  const std::uint32_t end = fault.token_end - (late_texts_.contains(fault.token) ? 1 : 0);
  const Token& first = mender_.token(fault.token);
  const Token& last = mender_.token(end - 1);
  const std::string text = shown(mender_.document.source.text(first.begin, last.end));
  const std::string_view source = mender_.document.source.text();
  // What stands in front, or is added there, and what stands behind must not become one word.
  const bool separates = last.end != source.size() && is_name_character(source[last.end]);
  if (separates) {
    mender_.edits.replace(first.begin, last.end, " ");
  } else {
    mender_.erase_tokens(fault.token, end);
  }
  mender_.note(FaultKind::kSurplus, fault.statement, fault.token, fault.token_end,
               "surplus " + text + " removed");
}

/// Whether the tokens behind a text are its rest, because a quote within it has no backslash.
bool FormMends::is_rest_of_text(const Fault& fault) const {
  if (fault.token == 0 || mender_.token(fault.token - 1).kind != TokenKind::kText) return false;
  const Role role = mender_.token(fault.token - 1).role;
  if (role != Role::kComment && role != Role::kValue) return false;
  const std::uint32_t last = fault.token_end - 1;
  return mender_.token(last).kind == TokenKind::kText ||
         (surplus_texts_.contains(last) && mender_.text_of(last) == "\"");
}

void FormMends::escape_quotes(const Fault& fault) {
  const std::uint32_t begin = mender_.token(fault.token - 1).begin + 1;
  const std::uint32_t end = mender_.token(fault.token_end - 1).end - 1;
  const std::string_view text = mender_.document.source.text();
  std::uint64_t count = 0;
  for (std::uint32_t at = begin; at < end; ++at) {
    if (text[at] != '"' || text[at - 1] == '\\') continue;
    mender_.edits.insert_before(at, "\\");
    ++count;
  }
  mender_.note(FaultKind::kSurplus, fault.statement, fault.token - 1, fault.token_end,
               "backslash added in front of " + counted(count, "quote") + " within a text");
}

}  // namespace zelk::check
