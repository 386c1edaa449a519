#include "check/repair/decoding.hpp"

#include <algorithm>
#include <cstdint>

#include "base/encoding.hpp"
#include "check/findings/sentences.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

namespace {

enum class ByteOrder { kNone, kLittle, kBig };

/// A file begins with ASCII characters, of which each has one zero byte.
ByteOrder utf16_order(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return ByteOrder::kLittle;
  if (bytes.starts_with("\xFE\xFF")) return ByteOrder::kBig;
  if (bytes.size() < 4) return ByteOrder::kNone;
  const auto is_zero = [&](std::size_t i) { return bytes[i] == '\0'; };
  if (!is_zero(0) && is_zero(1) && !is_zero(2) && is_zero(3)) return ByteOrder::kLittle;
  if (is_zero(0) && !is_zero(1) && is_zero(2) && !is_zero(3)) return ByteOrder::kBig;
  return ByteOrder::kNone;
}

bool is_high_surrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_low_surrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void note(std::vector<Finding>& findings, FaultKind kind, Span span, std::string message) {
  findings.push_back({Severity::kNote, name_of(kind), span, std::move(message)});
}

/// Whether a character can become something else with the next one: a part of a longer name or
/// number, of a comment, or the escape of a quote.
bool may_join(char c) {
  constexpr std::string_view kAlone = "\",;:|@()[]";
  const bool is_blank = static_cast<unsigned char>(c) <= ' ';
  return !is_blank && kAlone.find(c) == std::string_view::npos;
}

/// A blank stays where what stands on both sides would become one.
void erase_nuls(std::string_view text, Edits& edits, std::vector<Finding>& findings) {
  for (std::size_t at = text.find('\0'); at != std::string_view::npos;) {
    const std::size_t end = std::min(text.find_first_not_of('\0', at), text.size());
    const bool is_inside = at != 0 && end != text.size();
    const bool joins =
        is_inside && may_join(text[at - 1]) && (may_join(text[end]) || text[at - 1] == '\\');
    const Span span{static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end)};
    edits.replace(span.begin, span.end, joins ? " " : "");
    note(findings, FaultKind::kNulByte, span, counted(end - at, "NUL byte") + " removed");
    at = text.find('\0', end);
  }
}

void mend_line_ends(std::string_view text, Edits& edits, std::vector<Finding>& findings) {
  if (text.find('\n') != std::string_view::npos) return;
  std::uint64_t count = 0;
  for (std::size_t at = text.find('\r'); at != std::string_view::npos;
       at = text.find('\r', at + 1)) {
    const auto place = static_cast<std::uint32_t>(at);
    edits.replace(place, place + 1, "\n");
    ++count;
  }
  if (count != 0) {
    note(findings, FaultKind::kLineEnds, {0, 0},
         counted(count, "carriage return") + " replaced by line feeds, of which there are none");
  }
}

}  // namespace

std::optional<std::string> decoded_utf16(std::string_view bytes) {
  const ByteOrder order = utf16_order(bytes);
  if (order == ByteOrder::kNone) return std::nullopt;
  const auto unit = [&](std::size_t i) {
    const std::uint32_t first = static_cast<unsigned char>(bytes[i]);
    const std::uint32_t second = static_cast<unsigned char>(bytes[i + 1]);
    return order == ByteOrder::kLittle ? second << 8 | first : first << 8 | second;
  };
  std::string text;
  text.reserve(bytes.size() / 2 + 16);
  const std::size_t size = bytes.size() - bytes.size() % 2;
  for (std::size_t i = 0; i < size; i += 2) {
    std::uint32_t code_point = unit(i);
    const bool is_mark = i == 0 && code_point == 0xFEFF;
    const bool is_pair =
        is_high_surrogate(code_point) && i + 3 < size && is_low_surrogate(unit(i + 2));
    if (is_pair) {
      code_point = 0x10000 + ((code_point - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
      i += 2;
    } else if (code_point >= 0xD800 && code_point < 0xE000) {
      code_point = 0xFFFD;
    }
    if (!is_mark) append_utf8(text, code_point);
  }
  return text;
}

std::optional<Composition> cleaned(std::string_view text, const RepairOptions& options,
                                   std::vector<Finding>& findings) {
  Edits edits;
  if (!options.kept.contains(name_of(FaultKind::kNulByte))) erase_nuls(text, edits, findings);
  if (!options.kept.contains(name_of(FaultKind::kLineEnds))) mend_line_ends(text, edits, findings);
  if (edits.empty()) return std::nullopt;
  return edits.apply(text);
}

}  // namespace zelk::check
