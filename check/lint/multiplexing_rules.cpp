// Multiplexors, and the signals that their values select.

#include "base/multiplexing.hpp"

#include <algorithm>
#include <vector>

#include "base/signal_bits.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

/// Values of multiplexors are compared in as many bits.
constexpr std::uint16_t kLongestMultiplexor = 32;

constexpr Rule kMissing{
    "missing-multiplexor",
    Severity::kError,
    "No multiplexor selects a multiplexed signal",
    "A signal with an indicator such as m3 is there when the multiplexor of its message (M) has "
    "the "
    "value 3. Without a multiplexor, or with several and no SG_MUL_VAL_ statement that names one "
    "of "
    "them, it is in no frame.",
    "BO_ 256 Diagnosis: 8 Gateway\n SG_ Voltage m3 : 8|16@1+ (1,0) [0|0] \"\" Tester\n",
    "Mark the multiplexor with M, or delete the indicators of signals that are always there."};

constexpr Rule kUnused{
    "unused-multiplexor",
    Severity::kWarning,
    "A multiplexor selects no signal",
    "A signal marked with M whose values select nothing is an ordinary signal. Perhaps the "
    "indicators "
    "of other signals are missing, which then seem to be in every frame.",
    "BO_ 256 Diagnosis: 8 Gateway\n SG_ Page M : 0|8@1+ (1,0) [0|0] \"\" Tester\n",
    "Give the multiplexed signals their indicators, or delete the M."};

constexpr Rule kValue{"multiplexor-value",
                      Severity::kError,
                      "A multiplexor never has a value that selects a signal",
                      "The value behind m, or all ranges of the SG_MUL_VAL_ statement, are beyond "
                      "the multiplexor's bits "
                      "(or a range ends below its beginning): the signal is in no frame.",
                      " SG_ Page M : 0|2@1+ (1,0) [0|3] \"\" Tester\n"
                      " SG_ Voltage m4 : 8|16@1+ (1,0) [0|0] \"\" Tester\n",
                      "Correct the value, or the length of the multiplexor."};

constexpr Rule kUnusedValue{"unused-multiplexor-value",
                            Severity::kNote,
                            "A described value of a multiplexor selects no signal",
                            "VAL_ describes a value of the multiplexor, but no signal is there for "
                            "it. The page may be empty "
                            "on purpose, or its signals are missing.",
                            "VAL_ 256 Page 0 \"Voltages\" 1 \"Currents\" ;\n",
                            "Add the signals of the page, or delete the description."};

constexpr Rule kUnusable{"unusable-multiplexor",
                         Severity::kError,
                         "A multiplexor is a floating-point signal or has more than 32 bits",
                         "The values that select signals are whole numbers of 32 bits. A "
                         "multiplexor that has other ones "
                         "selects nothing.",
                         " SG_ Page M : 0|40@1+ (1,0) [0|0] \"\" Tester\n",
                         "Correct the length or the value type of the multiplexor."};

/// Whether a multiplexor can have the value. A negative one is given as 32 bits.
bool can_have(const sigblk& multiplexor, std::uint32_t value) {
  const unsigned bits = multiplexor.length;
  if (value <= low_bits(bits)) return true;
  return is_signed(multiplexor) && bits > 0 && value >= ~low_bits(bits - 1) % (1ULL << 32);
}

bool can_be_in(const sigblk& multiplexor, const muxor_val_range& range) {
  return range.low <= range.high &&
         (can_have(multiplexor, range.low) || can_have(multiplexor, range.high));
}

void check_selected(const LintContext& context, const PlacedSignal& signal) {
  const sigblk& record = *signal.record;
  const sigblk* const multiplexor = record.mux_signal;
  if (!multiplexor || multiplexor == &record || !record.mux_ranges) {
    context.report(kMissing, signal.statement, Role::kIndicator, [&](Finding& finding) {
      finding.message = multiplexor == &record ? "the multiplexor selects itself"
                        : multiplexor          ? "no value of a multiplexor selects the signal"
                                               : "no multiplexor selects the signal";
    });
    return;
  }
  if (find_first(record.mux_ranges,
                 [&](const muxor_val_range& range) { return can_be_in(*multiplexor, range); }))
    return;
  context.report(kValue, signal.statement, Role::kIndicator, [&](Finding& finding) {
    finding.message =
        join("the multiplexor ", view(multiplexor->name), " has ",
             counted(multiplexor->length, "bit"), " and never the value ", record.mux_ranges->low);
  });
}

void check_multiplexor(const LintContext& context, const PlacedSignal& signal) {
  const sigblk& record = *signal.record;
  if (record.length <= kLongestMultiplexor && !is_ieee(record)) return;
  context.report(kUnusable, signal.statement, Role::kIndicator, [&](Finding& finding) {
    finding.message = is_ieee(record)
                          ? "a floating-point signal cannot be a multiplexor"
                          : join("the multiplexor has ", record.length, " bits, more than 32");
  });
}

/// All ranges for which a multiplexor selects signals, in ascending order.
using Ranges = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

bool has(const Ranges& merged, std::uint32_t value) {
  const auto behind = std::ranges::upper_bound(merged, value, {}, [](auto r) { return r.first; });
  return behind != merged.begin() && value <= std::prev(behind)->second;
}

/// In ascending order, without overlaps.
void merge(Ranges& ranges) {
  std::ranges::sort(ranges);
  std::size_t count = 0;
  for (const auto& [low, high] : ranges) {
    if (low > high) continue;
    const bool goes_on = count > 0 && low <= ranges[count - 1].second;
    if (goes_on) {
      ranges[count - 1].second = std::max(ranges[count - 1].second, high);
    } else {
      ranges[count++] = {low, high};
    }
  }
  ranges.resize(count);
}

void check_use(const LintContext& context, const PlacedSignal& multiplexor, const Ranges& used) {
  if (used.empty()) {
    return context.report(kUnused, multiplexor.statement, Role::kIndicator, [](Finding& finding) {
      finding.message = "the multiplexor selects no signal";
    });
  }
  constexpr int kMostShown = 5;
  int count = 0;
  std::string values;
  for (const val& description : each(multiplexor.record->values)) {
    if (has(used, static_cast<std::uint32_t>(description.value))) continue;
    if (++count <= kMostShown)
      values += join(count > 1 ? ", " : "", description.value, " \"", view(description.text), "\"");
  }
  if (count == 0) return;
  context.report(kUnusedValue, multiplexor.statement, Role::kSignal, [&](Finding& finding) {
    finding.message = join("no signal is selected by ", count > 1 ? "the values " : "the value ",
                           values, count > kMostShown ? ", ..." : "");
  });
}

/// The ranges that each multiplexor of a message uses.
class UsedRanges {
 public:
  void enter(const sigblk& multiplexor) { entries_.push_back({&multiplexor, {}}); }
  void finish_entering() { std::ranges::sort(entries_, {}, &Entry::multiplexor); }
  /// Null for a signal that was not entered.
  Ranges* find(const sigblk* multiplexor) {
    const auto found = std::ranges::lower_bound(entries_, multiplexor, {}, &Entry::multiplexor);
    const bool is_found = found != entries_.end() && found->multiplexor == multiplexor;
    return is_found ? &found->ranges : nullptr;
  }

 private:
  struct Entry {
    const sigblk* multiplexor;
    Ranges ranges;
  };
  std::vector<Entry> entries_;
};

void check_message(const LintContext& context, const PlacedMessage& message) {
  const auto signals = context.places.signals(message);
  UsedRanges used;
  for (const PlacedSignal& signal : signals)
    if (is_multiplexor(*signal.record)) used.enter(*signal.record);
  used.finish_entering();
  for (const PlacedSignal& signal : signals) {
    if (!is_multiplexed(*signal.record)) continue;
    check_selected(context, signal);
    Ranges* const ranges = used.find(signal.record->mux_signal);
    for (const muxor_val_range& range : each(signal.record->mux_ranges))
      if (ranges) ranges->emplace_back(range.low, range.high);
  }
  for (const PlacedSignal& signal : signals) {
    Ranges* const ranges = used.find(signal.record);
    if (!ranges) continue;
    merge(*ranges);
    check_multiplexor(context, signal);
    check_use(context, signal, *ranges);
  }
}

constexpr const Rule* kRules[] = {&kMissing, &kUnused, &kValue, &kUnusedValue, &kUnusable};

}  // namespace

const RuleGroup kMultiplexingRules = {kRules, check_message, nullptr};

}  // namespace zelk::check
