// Identifiers, lengths and formats of messages.

#include <algorithm>
#include <array>

#include "base/frame_id.hpp"
#include "base/hash_table.hpp"
#include "base/j1939.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

/// SAE J1939-21: what the transport protocol carries in 255 packets of 7 bytes.
constexpr std::uint16_t kLongestJ1939 = 1785;
constexpr std::uint16_t kLongestClassic = 8;

constexpr Rule kRange{
    "identifier-range",
    Severity::kError,
    "A message's identifier has more bits than its frames have",
    "CAN frames have identifiers of 11 or 29 bits. Bit 31 of the number in the file marks one of "
    "29 "
    "bits and is no part of it. No frame can have an identifier beyond them, so the message is "
    "neither sent nor received. The identifiers 3221225472 and 1073741824, under which tools keep "
    "signals that belong to no message, are not meant.",
    "BO_ 2304 Status: 8 Gateway\n",
    "When 29 bits are meant, add 2147483648 (0x80000000): here 2147485952."};

constexpr Rule kDoubled{"doubled-identifier",
                        Severity::kError,
                        "Two messages have one identifier",
                        "A frame is decoded by the first message with its identifier, and so are "
                        "all later statements of "
                        "the file meant for that one. The other message is never found.",
                        "BO_ 256 Speed: 8 Gateway\nBO_ 256 SpeedNew: 8 Gateway\n",
                        "Delete the message that is out of use, or correct its identifier."};

constexpr Rule kLength{
    "frame-length",
    Severity::kError,
    "No CAN or CAN FD frame has a message's length",
    "CAN frames have 0 to 8 bytes of data, CAN FD frames also 12, 16, 20, 24, 32, 48 or 64. J1939 "
    "messages have up to 1785 bytes, in several frames; they are known by the attribute "
    "VFrameFormat "
    "or ProtocolType. Encoders and bus simulations refuse all other lengths, or round them up.",
    "BO_ 256 Status: 10 Gateway\n",
    "Give the message the length that its frames have on the bus: here 12."};

constexpr Rule kFormat{"frame-format",
                       Severity::kWarning,
                       "A message's frame format contradicts its identifier or length",
                       "The attribute VFrameFormat says whether frames have 11 or 29 bits of "
                       "identifier and whether they "
                       "are CAN FD frames; so do bit 31 of the identifier and a length above 8. "
                       "Tools follow the one or "
                       "the other.",
                       "BO_ 2147483904 Status: 8 Gateway\nBA_ \"VFrameFormat\" BO_ 2147483904 0;\n",
                       "Correct what is wrong: the attribute, the identifier or the length."};

bool is_extended(const msgblk& message) { return (message.id & ZELK_ID_EXTENDED) != 0; }

void check_range(const LintContext& context, const PlacedMessage& message) {
  const std::uint32_t id = message.record->id;
  const std::uint32_t number = id & ~ZELK_ID_EXTENDED;
  const bool is_29_bits = is_extended(*message.record);
  if (number <= (is_29_bits ? kLargestExtendedId : kLargestStandardId)) return;
  context.report(kRange, message.statement, Role::kMessageId, [&](Finding& finding) {
    finding.message =
        join("the identifier ", hexadecimal(id), " has more than ", is_29_bits ? 29 : 11, " bits");
    if (!is_29_bits && number <= kLargestExtendedId) {
      finding.cause =
          join("an identifier of 29 bits is written with bit 31: ", number | ZELK_ID_EXTENDED);
    }
  });
}

bool is_frame_length(std::uint16_t length) {
  static constexpr std::array<std::uint16_t, 7> kLongLengths = {12, 16, 20, 24, 32, 48, 64};
  return length <= kLongestClassic || std::ranges::binary_search(kLongLengths, length);
}

void check_length(const LintContext& context, const PlacedMessage& message) {
  const std::uint16_t length = message.record->dlc;
  if (is_frame_length(length)) return;
  if (length <= kLongestJ1939 && context.attributes.is_j1939(*message.record)) return;
  context.report(kLength, message.statement, Role::kSize, [&](Finding& finding) {
    finding.message = join("no frame has ", length, " bytes of data");
  });
}

/// What a frame format contradicts; empty for nothing.
std::string_view contradiction(std::string_view format, const msgblk& message) {
  const bool is_fd = format.ends_with("FD");
  const bool is_29_bits = format.starts_with("Extended") || j1939::is_j1939_format(format);
  const bool is_known = is_29_bits || format.starts_with("Standard");
  if (is_known && is_29_bits != is_extended(message))
    return is_29_bits ? "the identifier has 11 bits" : "the identifier has 29 bits";
  const bool is_classic = is_known && !is_fd && !j1939::is_j1939_format(format);
  if (is_classic && message.dlc > kLongestClassic)
    return "only CAN FD frames have more than 8 bytes";
  return {};
}

/// Only a format of the message's own: the default stands for none given.
void check_format(const LintContext& context, const PlacedMessage& message) {
  const KnownAttribute& attribute = context.attributes.frame_format;
  if (!attribute.is_set(message.record->attrs)) return;
  const auto format = attribute.text(message.record->attrs).value_or("");
  const std::string_view fault = contradiction(format, *message.record);
  if (fault.empty()) return;
  context.report(kFormat, message.statement, Role::kMessageId, [&](Finding& finding) {
    finding.message = join("the frame format is \"", format, "\", but ", fault);
  });
}

void check_message(const LintContext& context, const PlacedMessage& message) {
  if (is_pseudo(*message.record)) return;
  check_range(context, message);
  check_length(context, message);
  check_format(context, message);
}

void check_database(const LintContext& context) {
  const auto messages = context.places.messages();
  HashTable<std::uint32_t, const PlacedMessage*> first(messages.size());
  for (const PlacedMessage& message : messages) {
    const PlacedMessage* const other = first.enter(message.record->id, &message);
    if (other == &message) continue;
    context.report(kDoubled, message.statement, Role::kMessageId, [&](Finding& finding) {
      finding.message = join("message ", view(other->record->name), " has the identifier ",
                             hexadecimal(message.record->id), " as well");
      finding.related.push_back(
          {context.span_of(other->statement, Role::kMessageId), "the first message with it"});
    });
  }
}

constexpr const Rule* kRules[] = {&kRange, &kDoubled, &kLength, &kFormat};

}  // namespace

const RuleGroup kIdentifierRules = {kRules, check_message, check_database};

}  // namespace zelk::check
