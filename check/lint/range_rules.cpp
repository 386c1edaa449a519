// Ranges and factors of signals, and ranges of everything else.

#include <cmath>

#include "check/lint/context.hpp"
#include "check/lint/value_range.hpp"

namespace zelk::check {

namespace {

constexpr Rule kExchanged{
    "minimum-over-maximum",
    Severity::kWarning,
    "A minimum is above its maximum",
    "No value is in such a range. Some tools exchange the two, as this one does, others refuse all "
    "values or the file.",
    " SG_ Temperature : 0|8@1- (1,0) [127|-128] \"degC\" Cluster\n",
    "Exchange the two, or correct them."};

constexpr Rule kUnreachable{"unreachable-range",
                            Severity::kNote,
                            "A signal's range has values that its bits cannot reach",
                            "Minimum and maximum are physical values: raw value * factor + offset. "
                            "Values beyond those of the "
                            "smallest and the largest raw value cannot be sent; where a tool takes "
                            "the range for what it may "
                            "set, they are cut or wrap round.",
                            " SG_ Temperature : 0|8@1+ (1,-40) [-40|400] \"degC\" Cluster\n",
                            "Correct the range, the length, the sign, the factor or the offset. "
                            "[0|0] stands for no range."};

constexpr Rule kDisjoint{
    "impossible-range",
    Severity::kWarning,
    "No value of a signal's bits is in its range",
    "Minimum and maximum are physical values: raw value * factor + offset. When none of them is "
    "within the range, the range, the offset, the factor or the sign is wrong.",
    " SG_ Temperature : 0|8@1+ (1,-40) [300|400] \"K\" Cluster\n",
    "Correct what is wrong. [0|0] stands for no range."};

constexpr Rule kCut{
    "narrow-range",
    Severity::kNote,
    "A signal's range leaves most of its bits out",
    "The range covers only a small part of the values that the bits can have. Mostly the factor "
    "was "
    "forgotten when the range was written, or the signal is longer than it needs to be. Signals "
    "with "
    "value descriptions, and ranges that the raw values 0 and 1 fill, are not meant.",
    " SG_ Voltage : 0|16@1+ (0.001,0) [0|0.5] \"V\" Cluster\n",
    "Correct the range or the factor. [0|0] stands for no range.",
    {"share", 0.01, 0, 1, "Part of the values, 0.01 for 1 %, below which a range is narrow."}};

constexpr Rule kFactor{
    "factor-zero",
    Severity::kError,
    "A signal's factor is 0",
    "Every raw value would mean the same. Readers take 1 in its place, as this one does, or divide "
    "by 0 when they encode.",
    " SG_ Speed : 0|16@1+ (0,0) [0|0] \"km/h\" Cluster\n",
    "Give the signal its factor: 1 when physical and raw values are the same."};

// --- Minimum and maximum ---

void check_exchanged(const LintContext& context, std::uint32_t statement) {
  const Statement& where = context.document.statements[statement];
  const auto minimum = real_value(context.document, where, Role::kMinimum);
  const auto maximum = real_value(context.document, where, Role::kMaximum);
  if (!minimum || !maximum || !(*minimum > *maximum)) return;
  context.report(kExchanged, statement, Role::kMinimum, [&](Finding& finding) {
    finding.message = join("the minimum ", *minimum, " is above the maximum ", *maximum);
  });
}

/// How far a range may be beyond what can be reached: what people round, or count as one more.
double tolerance(const sigblk& signal, const ValueRange& reach) {
  return std::abs(signal.factor) + 0.01 * (reach.high - reach.low);
}

void check_reach(const LintContext& context, const PlacedSignal& signal) {
  const sigblk& record = *signal.record;
  const ValueRange reach = physical_range(record);
  const double slack = tolerance(record, reach);
  const bool is_disjoint =
      record.minimum > reach.high + slack || record.maximum < reach.low - slack;
  const bool is_within =
      record.maximum <= reach.high + slack && record.minimum >= reach.low - slack;
  if (is_within) return;
  const Rule& rule = is_disjoint ? kDisjoint : kUnreachable;
  context.report(rule, signal.statement, Role::kMinimum, [&](Finding& finding) {
    finding.message = join("the range is ", record.minimum, " to ", record.maximum, ", but ",
                           counted(record.length, "bit"), record.length > 1 ? " give " : " gives ",
                           reach.low, " to ", reach.high);
  });
}

void check_share(const LintContext& context, const PlacedSignal& signal) {
  const sigblk& record = *signal.record;
  const ValueRange reach = physical_range(record);
  const double range = record.maximum - record.minimum;
  const bool is_flag = range <= std::abs(record.factor);
  if (record.values || is_flag) return;
  if (range >= context.reports.parameter(kCut) * (reach.high - reach.low)) return;
  context.report(kCut, signal.statement, Role::kMinimum, [&](Finding& finding) {
    finding.message = join("the range is ", record.minimum, " to ", record.maximum, ", while ",
                           counted(record.length, "bit"), record.length > 1 ? " give " : " gives ",
                           reach.low, " to ", reach.high);
  });
}

void check_signal(const LintContext& context, const PlacedSignal& signal) {
  const sigblk& record = *signal.record;
  const bool has_place = signal.statement != Statement::kNone;
  if (has_place && record.minimum < record.maximum) check_exchanged(context, signal.statement);
  if (has_place && record.factor == 1) {
    const Statement& statement = context.document.statements[signal.statement];
    if (real_value(context.document, statement, Role::kFactor) == 0.0) {
      context.report(kFactor, signal.statement, Role::kFactor, [](Finding& finding) {
        finding.message = "the factor is 0, and 1 is taken in its place";
      });
    }
  }
  const bool has_range = record.minimum != record.maximum && !is_ieee(record) &&
                         record.length > 0 && record.length <= 64;
  if (!has_range) return;
  check_reach(context, signal);
  check_share(context, signal);
}

void check_message(const LintContext& context, const PlacedMessage& message) {
  for (const PlacedSignal& signal : context.places.signals(message)) check_signal(context, signal);
}

void check_database(const LintContext& context) {
  for (const Statement& statement : context.statements()) {
    const bool has_range =
        statement.kind == Word::kVariable || statement.kind == Word::kSignalType ||
        statement.kind == Word::kDefinition || statement.kind == Word::kRelationDefinition;
    if (has_range && statement.is_readable) check_exchanged(context, context.index_of(statement));
  }
}

constexpr const Rule* kRules[] = {&kExchanged, &kUnreachable, &kDisjoint, &kCut, &kFactor};

}  // namespace

const RuleGroup kRangeRules = {kRules, check_message, check_database};

}  // namespace zelk::check
