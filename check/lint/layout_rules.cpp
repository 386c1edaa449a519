// Places and sizes of signals in their frames.

#include "base/signal_bits.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

constexpr std::uint16_t kLongestValue = 64;

constexpr Rule kOutside{
    "signal-outside-frame",
    Severity::kError,
    "A signal reaches beyond the bytes of its message",
    "No frame of the message holds all bits of the signal, so it can be neither sent nor received. "
    "The start bit of a Motorola signal (@0) is its most significant bit, and the signal goes on "
    "in "
    "the following bytes; a start bit that was meant for the least significant one puts it too far "
    "back.",
    "BO_ 256 Speed: 2 Gateway\n SG_ Speed : 8|16@1+ (0.01,0) [0|655.35] \"km/h\" Cluster\n",
    "Correct the start bit, the length of the signal or that of the message."};

constexpr Rule kTooLong{
    "long-signal",
    Severity::kWarning,
    "A signal has more than 64 bits",
    "Tools compute values in 64 bits at most. Longer signals are refused, cut, or only shown as "
    "bytes.",
    " SG_ Serial : 0|128@1+ (1,0) [0|0] \"\" Cluster\n",
    "Divide the signal into several of up to 64 bits."};

constexpr Rule kFloatLength{
    "float-length",
    Severity::kError,
    "A floating-point signal has another length than its type",
    "SIG_VALTYPE_ makes a signal an IEEE single (1), which has 32 bits, or a double (2), which has "
    "64. With another length there is no such number.",
    " SG_ Torque : 0|16@1- (1,0) [0|0] \"Nm\" Cluster\nSIG_VALTYPE_ 256 Torque : 1;\n",
    "Correct the length, or delete the SIG_VALTYPE_ statement of an integer."};

constexpr Rule kSignedBit{
    "signed-bit",
    Severity::kNote,
    "A signal of one bit is signed",
    "In two's complement a single bit has the values 0 and -1. Nearly always 0 and 1 are meant.",
    " SG_ Brake : 5|1@1- (1,0) [0|1] \"\" Cluster\n",
    "Make the signal unsigned: + in place of -."};

/// Whether a Motorola signal fits into the message when its start bit is taken for its least
/// significant bit.
bool fits_from_lowest_bit(const msgblk& message, const sigblk& signal) {
  const std::uint32_t last = mirrored_bit(signal.start_bit);
  return is_motorola(signal) && last < 8U * message.dlc && last + 1 >= signal.length;
}

void check_outside(const LintContext& context, const msgblk& message, const PlacedSignal& signal) {
  const std::uint32_t bytes = end_byte(*signal.record);
  if (bytes <= message.dlc) return;
  context.report(kOutside, signal.statement, Role::kStart, [&](Finding& finding) {
    finding.message = join("the signal reaches to byte ", bytes - 1, ", but the message has ",
                           counted(message.dlc, "byte"), ", counted from 0");
    if (fits_from_lowest_bit(message, *signal.record))
      finding.cause = "the start bit of a Motorola signal is its most significant bit";
  });
}

void check_float(const LintContext& context, const PlacedSignal& signal) {
  const bool is_single = signal.record->value_type == ZELK_VALUE_IEEE_SINGLE;
  const int wanted = is_single ? 32 : 64;
  if (!is_ieee(*signal.record) || signal.record->length == wanted) return;
  context.report(kFloatLength, signal.statement, Role::kLength, [&](Finding& finding) {
    finding.message = join("an IEEE ", is_single ? "single" : "double", " has ", wanted,
                           " bits, not ", signal.record->length);
  });
}

void check_signal(const LintContext& context, const msgblk& message, const PlacedSignal& signal) {
  check_outside(context, message, signal);
  check_float(context, signal);
  if (signal.record->length > kLongestValue) {
    context.report(kTooLong, signal.statement, Role::kLength, [&](Finding& finding) {
      finding.message = join("the signal has ", signal.record->length, " bits, more than 64");
    });
  }
  if (signal.record->length == 1 && is_signed(*signal.record)) {
    context.report(kSignedBit, signal.statement, Role::kSign, [](Finding& finding) {
      finding.message = "a signed signal of one bit has the values 0 and -1";
    });
  }
}

void check_message(const LintContext& context, const PlacedMessage& message) {
  if (is_pseudo(*message.record)) return;
  for (const PlacedSignal& signal : context.places.signals(message))
    check_signal(context, *message.record, signal);
}

constexpr const Rule* kRules[] = {&kOutside, &kTooLong, &kFloatLength, &kSignedBit};

}  // namespace

const RuleGroup kLayoutRules = {kRules, check_message, nullptr};

}  // namespace zelk::check
