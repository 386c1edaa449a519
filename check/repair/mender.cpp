#include "check/repair/mender.hpp"

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/characters.hpp"
#include "check/findings/sentences.hpp"

namespace zelk::check {

namespace {

bool is_blank_byte(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// The statement; with its line when nothing else stands there, else with the blanks behind it.
Span with_line(std::string_view text, Span span) {
  std::uint32_t begin = span.begin;
  while (begin != 0 && is_blank_byte(text[begin - 1])) --begin;
  std::uint32_t end = span.end;
  while (end != text.size() && is_blank_byte(text[end])) ++end;
  const bool begins_line = begin == 0 || text[begin - 1] == '\n';
  const bool ends_line = end == text.size() || text[end] == '\n';
  if (!begins_line || !ends_line) return {span.begin, ends_line ? span.end : end};
  return {begin, end == text.size() ? end : end + 1};
}

/// Whether a name or number behind a stretch would touch what stands in front of it, or is added.
bool joins_words(std::string_view text, Span span) {
  return span.begin != 0 && span.end < text.size() &&
         static_cast<unsigned char>(text[span.begin - 1]) > ' ' &&
         is_name_character(text[span.end]);
}

/// Whether the last character of one text and the first one of another would stand in one word.
bool join(std::string_view left, std::string_view right) {
  return !left.empty() && !right.empty() && is_name_character(left.back()) &&
         is_name_character(right.front());
}

}  // namespace

void Mender::note(FaultKind kind, Span span, std::string message, std::string statement) {
  findings.push_back(
      {Severity::kNote, name_of(kind), span, std::move(message), std::move(statement)});
}

void Mender::note(FaultKind kind, std::uint32_t statement, std::uint32_t token,
                  std::uint32_t token_end, std::string message) {
  const std::uint32_t size = document.source.size();
  const bool is_empty = token == token_end;
  // What is missing is missed behind the token before.
  const std::uint32_t begin = is_empty && token != 0           ? document.tokens[token - 1].end
                              : token < document.tokens.size() ? document.tokens[token].begin
                                                               : size;
  const std::uint32_t end = is_empty ? begin : document.tokens[token_end - 1].end;
  std::string words;
  if (statement != Fault::kNoStatement) words = describe(document, document.statements[statement]);
  note(kind, {begin, std::max(begin, end)}, std::move(message), std::move(words));
}

void Mender::drop(FaultKind kind, std::uint32_t index, std::string_view why) {
  if (is_settled(index)) return;
  const Statement& there = document.statements[index];
  const std::string message = describe(document, there) + " dropped, " + std::string(why);
  note(kind, {document.begin_of(there), document.end_of(there)},
       message + ": " + shown(document.text_of(there)));
  erase(index);
}

void Mender::erase(std::uint32_t index) {
  assert(!is_settled(index));
  states_[index] = State::kDropped;
  const Statement& there = document.statements[index];
  const Span span =
      with_line(document.source.text(), {document.begin_of(there), document.end_of(there)});
  // What stood on both sides must not become one word.
  edits.drop(span.begin, span.end, joins_words(document.source.text(), span) ? " " : "");
}

void Mender::replace_token(std::uint32_t token, std::string text) {
  const std::uint32_t begin = document.tokens[token].begin;
  const std::uint32_t end = document.tokens[token].end;
  const std::string_view source = document.source.text();
  if (join(source.substr(0, begin), text)) text.insert(0, 1, ' ');
  if (join(text, source.substr(end))) text += ' ';
  edits.replace(begin, end, std::move(text));
}

void Mender::insert_behind_token(std::uint32_t token, std::string text) {
  const std::uint32_t end = document.tokens[token].end;
  if (join(text, document.source.text().substr(end))) text += ' ';
  edits.insert_behind(end, std::move(text));
}

void Mender::rewrite(std::uint32_t index, std::string text) {
  states_[index] = State::kRewritten;
  has_new_statements = true;
  const Statement& there = document.statements[index];
  if (join(text, document.source.text().substr(document.end_of(there)))) text += ' ';
  edits.replace(document.begin_of(there), document.end_of(there), std::move(text));
}

void Mender::erase_tokens(std::uint32_t first, std::uint32_t end) {
  const std::string_view text = document.source.text();
  std::uint32_t begin = document.tokens[first].begin;
  while (begin != 0 && is_blank_byte(text[begin - 1])) --begin;
  const std::uint32_t behind = document.tokens[end - 1].end;
  edits.replace(begin, behind, join(text.substr(0, begin), text.substr(behind)) ? " " : "");
}

}  // namespace zelk::check
