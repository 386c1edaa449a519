// Nodes, and what they send and receive.

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/list.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

constexpr Rule kUnused{
    "unused-node",
    Severity::kNote,
    "A node sends and receives nothing",
    "The node is in the list of nodes, but no message is sent by it, no signal received, and no "
    "environment variable accessed. Perhaps another spelling of its name is in use.",
    "BU_: Gateway Clusterr\n",
    "Delete the node, or give it what it sends and receives."};

constexpr Rule kUnlisted{"unlisted-node",
                         Severity::kWarning,
                         "A node is used that the list of nodes lacks",
                         "Senders, receivers and access nodes must be in the list behind BU_. This "
                         "reader adds a missing "
                         "one; others refuse the file. Often the name is misspelt.",
                         "BU_: Gateway Cluster\nBO_ 256 Speed: 8 Gatway\n",
                         "Correct the name, or add it to the list."};

constexpr Rule kNoSender{
    "message-without-sender",
    Severity::kNote,
    "A message has no sender",
    "No node is named as the sender of the message, so bus simulations never send it, and code "
    "generators leave it out. Where no message of the file has a sender, that is said once.",
    "BO_ 256 Speed: 8 Ostrel__XXX\n",
    "Name the node that sends the message."};

constexpr Rule kOwnReceiver{
    "sender-receives",
    Severity::kWarning,
    "The sender of a message receives its signals as well",
    "A node does not receive its own frames. Generated code gets a reception that never happens, "
    "with a timeout that always does. A node that receives all that it sends seems to stand for no "
    "node; "
    "it is reported once.",
    "BO_ 256 Speed: 8 Gateway\n SG_ Speed : 0|16@1+ (0.01,0) [0|0] \"km/h\" Gateway,Cluster\n",
    "Delete the node from the receivers, or correct the sender."};

constexpr Rule kSenderList{
    "sender-list",
    Severity::kWarning,
    "The list of a message's senders lacks the sender of its own line",
    "BO_TX_BU_ names all nodes that send a message, the one of the BO_ line included. Tools that "
    "read one of the two see different senders.",
    "BO_ 256 Speed: 8 Gateway\nBO_TX_BU_ 256 : Cluster,Radio;\n",
    "Add the sender to the list, or correct the BO_ line."};

std::string_view name_of(const rxblk& link) { return link.node ? view(link.node->name) : ""; }

bool has_node(const rxblk* links, const symblk* node) {
  return find_first(links, [node](const rxblk& link) { return link.node == node; });
}

bool is_without_sender(const msgblk& message) { return !message.transmitter && !message.tx_nodes; }

/// The name of a receiver on the line of a signal; else the signal's.
Span span_of_receiver(const LintContext& context, std::uint32_t statement, std::string_view name) {
  if (statement != Statement::kNone) {
    for (const Token& token : context.document.tokens_of(context.document.statements[statement])) {
      if (token.role == Role::kReceiver && context.document.text_of(token) == name)
        return context.span_of(token);
    }
  }
  return context.span_of(statement, Role::kSignal);
}

/// A message with signals that its sender receives.
struct OwnReception {
  const PlacedMessage* message;
  const PlacedSignal* first;  ///< of those signals
  std::uint64_t count = 0;    ///< their number
};

OwnReception own_reception(const LintContext& context, const PlacedMessage& message) {
  OwnReception own{&message, nullptr};
  for (const PlacedSignal& signal : context.places.signals(message)) {
    if (!has_node(signal.record->receivers, message.record->transmitter)) continue;
    if (!own.first) own.first = &signal;
    ++own.count;
  }
  return own;
}

/// Of one sender.
struct OwnReceptions {
  std::uint64_t sent = 0;  ///< messages with signals
  std::vector<OwnReception> received;
};

/// Once for each message: at the first signal that its sender receives.
void report_reception(const LintContext& context, const OwnReception& own) {
  const std::string_view sender = view(own.message->record->transmitter->name);
  const Span span = span_of_receiver(context, own.first->statement, sender);
  context.report(kOwnReceiver, own.first->statement, span, [&](Finding& finding) {
    finding.message =
        join("node ", sender, " sends the message, and receives ",
             own.count > 1 ? join(own.count, " of its signals") : std::string("this signal of it"));
  });
}

void check_receivers(const LintContext& context) {
  std::unordered_map<const symblk*, OwnReceptions> senders;
  for (const PlacedMessage& message : context.places.messages()) {
    const symblk* const sender = message.record->transmitter;
    if (!sender || !message.record->signals || is_pseudo(*message.record)) continue;
    OwnReceptions& all = senders[sender];
    ++all.sent;
    const OwnReception own = own_reception(context, message);
    if (own.first) all.received.push_back(own);
  }
  for (const PlacedNode& node : context.places.nodes()) {
    const auto found = senders.find(node.record);
    if (found == senders.end()) continue;
    const std::size_t received = found->second.received.size();
    if (received > 1 && received == found->second.sent) {
      const Span span = context.span_of_node(node);
      context.report(kOwnReceiver, Statement::kNone, span, [&](Finding& finding) {
        finding.message = join("node ", view(node.record->name), " receives each of the ", received,
                               " messages that it sends: it seems to stand for no node");
      });
      continue;
    }
    for (const OwnReception& own : found->second.received) report_reception(context, own);
  }
}

void check_sender_list(const LintContext& context, const PlacedMessage& message) {
  const msgblk& record = *message.record;
  if (!record.transmitter || !record.tx_nodes || has_node(record.tx_nodes, record.transmitter))
    return;
  context.report(kSenderList, message.statement, Role::kTransmitter, [&](Finding& finding) {
    finding.message =
        join("the sender is ", view(record.transmitter->name),
             ", which the list of senders lacks: it begins with ", name_of(*record.tx_nodes));
  });
}

void check_senders(const LintContext& context) {
  const auto messages = context.places.messages();
  const auto lacks_sender = [](const PlacedMessage& message) {
    return !is_pseudo(*message.record) && is_without_sender(*message.record);
  };
  const auto is_real = [](const PlacedMessage& message) { return !is_pseudo(*message.record); };
  const auto lacking = std::ranges::count_if(messages, lacks_sender);
  if (lacking == 0) return;
  const bool is_all = lacking > 1 && lacking == std::ranges::count_if(messages, is_real);
  for (const PlacedMessage& message : messages) {
    if (!lacks_sender(message)) continue;
    context.report(kNoSender, message.statement, Role::kTransmitter, [&](Finding& finding) {
      finding.message = is_all
                            ? join("no message has a sender, this one and ", lacking - 1, " more")
                            : std::string("the message has no sender");
    });
    if (is_all) return;
  }
}

using NodeSet = std::unordered_set<const symblk*>;

/// Neighbours mostly have the same node, which is not entered again.
void enter_nodes(NodeSet& nodes, const rxblk* links, const symblk*& last) {
  for (const rxblk& link : each(links)) {
    if (link.node == last) continue;
    last = link.node;
    nodes.insert(last);
  }
}

NodeSet used_nodes(const RecordsView& records) {
  NodeSet used;
  const symblk* last = nullptr;
  for (const msgblk& message : each(records.messages)) {
    used.insert(message.transmitter);
    enter_nodes(used, message.tx_nodes, last);
    for (const sigblk& signal : each(message.signals)) enter_nodes(used, signal.receivers, last);
  }
  for (const env_var_blk& variable : each(records.env_vars))
    enter_nodes(used, variable.access_nodes, last);
  return used;
}

void check_database(const LintContext& context) {
  check_senders(context);
  check_receivers(context);
  const NodeSet used = used_nodes(context.records);
  for (const PlacedNode& node : context.places.nodes()) {
    if (used.contains(node.record)) continue;
    context.report(kUnused, Statement::kNone, context.span_of_node(node), [&](Finding& finding) {
      finding.message = join("node ", view(node.record->name), " sends and receives nothing");
    });
  }
  for (const PlacedNode& node : context.places.unlisted_nodes()) {
    context.report(kUnlisted, Statement::kNone, context.span_of_node(node), [&](Finding& finding) {
      finding.message = join("node ", view(node.record->name), " is not in the list of nodes");
    });
  }
}

constexpr const Rule* kRules[] = {&kUnused, &kUnlisted, &kNoSender, &kOwnReceiver, &kSenderList};

}  // namespace

const RuleGroup kNodeRules = {kRules, check_sender_list, check_database};

}  // namespace zelk::check
