// J1939: identifiers, priorities and addresses (SAE J1939-21, J1939-81).
//
// They apply to messages that the attributes of the file make messages of J1939: their frame format
// is "J1939PG", or the protocol of the network is J1939 and their identifier has 29 bits. A
// database that stores group numbers in place of identifiers is left out.

#include "base/j1939.hpp"

#include <array>
#include <map>
#include <optional>

#include "base/hash_table.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

constexpr std::uint32_t kExtendedDataPage = 1U << 25;

constexpr Rule kIdentifier{
    "j1939-identifier",
    Severity::kError,
    "A J1939 message has an identifier that no J1939 frame has",
    "J1939 frames have identifiers of 29 bits. Bit 25, the extended data page, is 0 in all of "
    "them: "
    "with 1 a frame belongs to another protocol.",
    "BO_ 256 EngineSpeed: 8 Engine\nBA_ \"VFrameFormat\" BO_ 256 3;\n",
    "Correct the identifier (bit 31 marks one of 29 bits), or the attribute VFrameFormat."};

constexpr Rule kPriority{
    "j1939-priority",
    Severity::kWarning,
    "A J1939 message has a wrong priority",
    "The priority stands in bits 26 to 28 of the identifier. The groups of network management and "
    "transport have fixed ones: 6, and 7 for transport. For all others 3 is usual in control "
    "loops, and "
    "6 elsewhere; 0 is what remains when the priority is forgotten.",
    "BO_ 2163212288 EngineSpeed: 8 Engine\n",
    "Give the identifier the priority that the frames have on the bus."};

constexpr Rule kAddress{
    "j1939-address",
    Severity::kWarning,
    "A J1939 message has a source address that its sender does not have",
    "The lowest byte of the identifier is the address of the sender, 254 for any. 255 addresses "
    "all "
    "nodes, and sends nothing. Where the sender has an address of its own, by the attribute "
    "NmStationAddress, its messages must have that one.",
    "BA_ \"NmStationAddress\" BU_ Engine 0;\nBO_ 2364540165 EngineSpeed: 8 Engine\n",
    "Correct the identifier, the sender or its attribute."};

constexpr Rule kDoubledAddress{
    "j1939-doubled-address",
    Severity::kWarning,
    "Two nodes have one J1939 address",
    "Each node on a bus has an address of its own. Two nodes that claim the same one send with it "
    "in "
    "turn, and diagnosis reaches only one of them.",
    "BA_ \"NmStationAddress\" BU_ Engine 3;\nBA_ \"NmStationAddress\" BU_ Gearbox 3;\n",
    "Correct the attribute NmStationAddress of one of them; 254 stands for none."};

constexpr Rule kDoubledGroup{
    "j1939-doubled-group",
    Severity::kWarning,
    "Two J1939 messages differ in their priority alone",
    "Receivers tell messages apart by parameter group and addresses, whatever the priority. So one "
    "of "
    "the two descriptions is never used.",
    "BO_ 2364540160 EngineSpeed: 8 Engine\nBO_ 2565866752 EngineSpeedSlow: 8 Engine\n",
    "Delete one of the two, or correct its identifier."};

// --- Messages ---

/// The priority that a group always has.
std::optional<std::uint32_t> fixed_priority(const j1939::FrameId& frame) {
  struct Fixed {
    std::uint32_t format;
    std::uint32_t priority;
  };
  static constexpr std::array<Fixed, 5> kFixed = {{
      {0xE8, 6},  // acknowledgement
      {0xEA, 6},  // request
      {0xEB, 7},  // transport, data
      {0xEC, 7},  // transport, connection
      {0xEE, 6},  // address claimed
  }};
  const bool is_first_page = frame.group.key >> 16 == 0;
  for (const Fixed& fixed : kFixed)
    if (is_first_page && fixed.format == frame.format) return fixed.priority;
  return std::nullopt;
}

void check_priority(const LintContext& context, const PlacedMessage& message) {
  const j1939::FrameId frame = j1939::frame_of_id(message.record->id);
  const auto fixed = fixed_priority(frame);
  if (frame.priority != 0 && frame.priority == fixed.value_or(frame.priority)) return;
  context.report(kPriority, message.statement, Role::kMessageId, [&](Finding& finding) {
    finding.message = fixed ? join("the group has the priority ", *fixed, ", not ", frame.priority)
                            : std::string("the priority is 0: it seems to be forgotten");
  });
}

void check_address(const LintContext& context, const PlacedMessage& message) {
  const std::uint32_t source = j1939::frame_of_id(message.record->id).source;
  const symblk* const sender = message.record->transmitter;
  const KnownAttribute& station = context.attributes.station;
  const bool has_own = sender && source != j1939::kAnyAddress && station.is_set(sender->attrs);
  const double own = has_own ? station.number(sender->attrs).value_or(source) : source;
  const bool is_own = own == source || own >= j1939::kAnyAddress;
  if (source != j1939::kGlobalAddress && is_own) return;
  context.report(kAddress, message.statement, Role::kMessageId, [&](Finding& finding) {
    finding.message = is_own ? std::string("the source address is 255, with which no node sends")
                             : join("the source address is ", source, ", but ", view(sender->name),
                                    " has the address ", own);
  });
}

void check_message(const LintContext& context, const PlacedMessage& message) {
  const msgblk& record = *message.record;
  const bool applies = !is_pseudo(record) && !context.attributes.has_group_numbers &&
                       context.attributes.is_j1939(record);
  if (!applies) return;
  const bool is_29_bits = (record.id & ZELK_ID_EXTENDED) != 0;
  if (!is_29_bits || (record.id & kExtendedDataPage) != 0) {
    return context.report(kIdentifier, message.statement, Role::kMessageId, [&](Finding& finding) {
      finding.message = is_29_bits
                            ? "the extended data page (bit 25) is set, which J1939 does not use"
                            : "a J1939 message has an identifier of 29 bits, not of 11";
    });
  }
  check_priority(context, message);
  check_address(context, message);
}

// --- All messages and nodes ---

void check_groups(const LintContext& context) {
  constexpr std::uint32_t kAllButPriority = 0x03FFFFFF;
  const auto messages = context.places.messages();
  HashTable<std::uint32_t, const PlacedMessage*> first(messages.size());
  for (const PlacedMessage& message : messages) {
    const std::uint32_t id = message.record->id;
    const bool is_group = (id & ZELK_ID_EXTENDED) && context.attributes.is_j1939(*message.record);
    if (!is_group || is_pseudo(*message.record)) continue;
    const PlacedMessage* const other = first.enter(id & kAllButPriority, &message);
    if (other->record->id == id) continue;
    context.report(kDoubledGroup, message.statement, Role::kMessageId, [&](Finding& finding) {
      finding.message = join("message ", view(other->record->name),
                             " has the same parameter group and addresses");
      finding.related.push_back(
          {context.span_of(other->statement, Role::kMessageId), "the other message"});
    });
  }
}

void check_stations(const LintContext& context) {
  std::map<double, const PlacedNode*> first;
  for (const PlacedNode& node : context.places.nodes()) {
    const attr* const values = node.record->attrs;
    if (!context.attributes.station.is_set(values)) continue;
    const auto address = context.attributes.station.number(values);
    if (!address || *address >= j1939::kAnyAddress) continue;
    const PlacedNode* const other = first.emplace(*address, &node).first->second;
    if (other == &node) continue;
    const Span span = context.span_of_node(node);
    context.report(kDoubledAddress, Statement::kNone, span, [&](Finding& finding) {
      finding.message = join("node ", view(node.record->name), " has the address ", *address,
                             ", as ", view(other->record->name), " has");
    });
  }
}

void check_database(const LintContext& context) {
  if (context.attributes.has_group_numbers) return;
  check_groups(context);
  if (context.attributes.has_j1939) check_stations(context);
}

constexpr const Rule* kRules[] = {&kIdentifier, &kPriority, &kAddress, &kDoubledAddress,
                                  &kDoubledGroup};

}  // namespace

const RuleGroup kJ1939Rules = {kRules, check_message, check_database};

}  // namespace zelk::check
