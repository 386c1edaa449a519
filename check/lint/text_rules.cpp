// Units, and the encoding of texts.

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/characters.hpp"
#include "base/encoding.hpp"
#include "base/seeded_hash.hpp"
#include "check/lint/context.hpp"
#include "check/lint/unit_names.hpp"

namespace zelk::check {

namespace {

constexpr Rule kUnits{
    "unit-spellings",
    Severity::kNote,
    "A unit is written in several ways",
    "The same unit in two spellings, such as km/h and kmh, makes two columns, axes or filters of "
    "what "
    "is one. Only units are compared that are surely the same: mV and MV are not.",
    " SG_ Speed : 0|16@1+ (0.01,0) [0|0] \"km/h\" Cluster\n"
    " SG_ Limit : 16|8@1+ (1,0) [0|0] \"kmh\" Cluster\n",
    "Choose one spelling: the one in the message is the most frequent one of the file."};

constexpr Rule kEncoding{
    "mixed-encoding",
    Severity::kWarning,
    "Texts of the file are in different encodings",
    "A database does not say how its texts are encoded. Some texts of this one are UTF-8, and "
    "others "
    "are not. Whatever a tool takes them for, some characters come out wrong.",
    "CM_ BO_ 256 \"K\xC3\xBChlmittel\";\n",
    "Convert the texts to one encoding: UTF-8, or Windows-1252 for older tools."};

// --- Units ---

struct Spelling {
  std::string_view unit;
  std::uint32_t statement;  ///< of the first signal that has it
  std::uint64_t count = 0;
};

/// The spellings of one unit.
using Spellings = std::vector<Spelling>;

/// All spellings of the file, in the order in which they come first.
Spellings spellings_of(const LintContext& context) {
  Spellings all;
  std::unordered_map<std::string_view, std::size_t, SeededHash> indexes;
  for (const PlacedSignal& signal : context.places.signals()) {
    const std::string_view unit = view(signal.record->unit);
    if (unit.empty()) continue;
    const auto [found, is_new] = indexes.emplace(unit, all.size());
    if (is_new) all.push_back({unit, signal.statement});
    ++all[found->second].count;
  }
  return all;
}

void check_units(const LintContext& context) {
  std::unordered_map<std::string, Spellings, SeededHash> units;
  for (const Spelling& spelling : spellings_of(context))
    units[unit_of(spelling.unit)].push_back(spelling);
  for (const auto& [unit, spellings] : units) {
    if (spellings.size() < 2) continue;
    const Spelling& usual = *std::ranges::max_element(spellings, {}, &Spelling::count);
    for (const Spelling& spelling : spellings) {
      if (&spelling == &usual) continue;
      context.report(kUnits, spelling.statement, Role::kUnit, [&](Finding& finding) {
        finding.message = join("the unit \"", spelling.unit, "\" is also written \"", usual.unit,
                               "\", by ", counted(usual.count, "signal"));
        finding.related.push_back(
            {context.span_of(usual.statement, Role::kUnit), "the usual spelling"});
      });
    }
  }
}

// --- Encoding ---

bool is_ascii(std::string_view text) {
  unsigned char all = 0;
  for (const char c : text) all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
  return all < 0x80;
}

/// The first text of each kind; all others of the rarer kind are only counted.
struct Encoded {
  const Token* first = nullptr;
  std::uint64_t count = 0;

  void enter(const Token& token) {
    if (!first) first = &token;
    ++count;
  }
};

void check_encoding(const LintContext& context) {
  if (is_ascii(context.document.source.text())) return;
  Encoded utf8;
  Encoded other;
  for (const Token& token : context.document.tokens) {
    if (token.kind != TokenKind::kText) continue;
    const std::string_view text = context.document.text_of(token);
    if (!is_ascii(text)) (is_utf8(text) ? utf8 : other).enter(token);
  }
  if (!utf8.first || !other.first) return;
  const bool is_mostly_utf8 = utf8.count >= other.count;
  const Encoded& rare = is_mostly_utf8 ? other : utf8;
  const Encoded& usual = is_mostly_utf8 ? utf8 : other;
  context.report(kEncoding, Statement::kNone, context.span_of(*rare.first), [&](Finding& finding) {
    finding.message = join(
        counted(rare.count, "text"), is_mostly_utf8 ? " not in UTF-8" : " in UTF-8",
        ", this is the first, and ", usual.count, is_mostly_utf8 ? " in UTF-8" : " not in UTF-8");
    finding.related.push_back({context.span_of(*usual.first), "the first of the others"});
  });
}

void check_database(const LintContext& context) {
  check_units(context);
  check_encoding(context);
}

constexpr const Rule* kRules[] = {&kUnits, &kEncoding};

}  // namespace

const RuleGroup kTextRules = {kRules, nullptr, check_database};

}  // namespace zelk::check
