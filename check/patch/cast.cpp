#include "check/patch/cast.hpp"

#include <algorithm>
#include <numeric>

namespace zelk::check {

namespace {

constexpr std::string_view kLongNodeNames = "SystemNodeLongSymbol";

Role role_of_name(CastKind kind) {
  constexpr Role kRoles[] = {Role::kMessage, Role::kSignal, Role::kVariable,
                             Role::kTable,   Role::kType,   Role::kNode};
  return kRoles[static_cast<std::size_t>(kind)];
}

/// What a statement introduces.
Cast::Kind kind_introduced(Word word) {
  switch (word) {
    case Word::kMessage:
      return {true, CastKind::kMessage};
    case Word::kSignal:
      return {true, CastKind::kSignal};
    case Word::kVariable:
      return {true, CastKind::kVariable};
    case Word::kValueTable:
      return {true, CastKind::kTable};
    case Word::kSignalType:
      return {true, CastKind::kType};
    default:
      return {false, CastKind::kNode};
  }
}

}  // namespace

Cast::Kind Cast::kind_of(Role role) {
  switch (role) {
    case Role::kMessage:
    case Role::kMessageId:
    case Role::kMessageRef:
      return {true, CastKind::kMessage};
    case Role::kSignal:
    case Role::kSignalRef:
    case Role::kMultiplexorRef:
      return {true, CastKind::kSignal};
    case Role::kVariable:
    case Role::kVariableRef:
      return {true, CastKind::kVariable};
    case Role::kTable:
    case Role::kTableRef:
      return {true, CastKind::kTable};
    case Role::kType:
    case Role::kTypeRef:
      return {true, CastKind::kType};
    case Role::kNode:
    case Role::kNodeRef:
    case Role::kTransmitter:
    case Role::kReceiver:
    case Role::kAccessNode:
      return {true, CastKind::kNode};
    default:
      return {false, CastKind::kNode};
  }
}

Cast::Cast(const Document& document)
    : document_(document), names_(document), objects_(document.statements.size(), kNone) {
  gather();
  for (List& list : lists_) {
    list.objects.resize(list.places.size());
    std::iota(list.objects.begin(), list.objects.end(), 0U);
  }
  number();
}

void Cast::gather() {
  for (std::uint32_t index = 0; index < document_.statements.size(); ++index) enter(index);
}

void Cast::enter(std::uint32_t index) {
  const Statement& statement = document_.statements[index];
  if (!statement.is_readable) return;
  const Kind introduced = kind_introduced(statement.kind);
  if (introduced.has) list(introduced.kind).places.push_back(index);
  if (statement.kind == Word::kNodes) {
    for (std::uint32_t token = statement.first; token < statement.end; ++token) {
      if (document_.tokens[token].role == Role::kNode)
        list(CastKind::kNode).places.push_back(token);
    }
  }
  const bool may_be_long_name = statement.kind == Word::kAttribute &&
                                document_.text_of(statement, Role::kAttributeRef) == kLongNodeNames;
  if (may_be_long_name) {
    long_names_.emplace(document_.text_of(statement, Role::kNodeRef),
                        document_.text_of(statement, Role::kValue));
  }
}

/// Makes the ways back from the numbers of the objects.
void Cast::number() {
  for (std::size_t kind = 0; kind < kCastKinds; ++kind) {
    List& list = lists_[kind];
    list.found.clear();
    for (std::uint32_t i = 0; i < list.places.size(); ++i) {
      const std::uint32_t object = list.objects[i];
      if (object == kNone) continue;
      if (object >= list.found.size()) list.found.resize(object + 1, kNone);
      if (list.found[object] == kNone) list.found[object] = i;
      if (static_cast<CastKind>(kind) != CastKind::kNode) objects_[list.places[i]] = object;
    }
  }
  nodes_.clear();
  const List& nodes = list(CastKind::kNode);
  for (std::size_t i = 0; i < nodes.places.size(); ++i) {
    nodes_.emplace(full_name(document_.text_of(document_.tokens[nodes.places[i]])),
                   nodes.objects[i]);
  }
}

std::string_view Cast::full_name(std::string_view node) const {
  const auto found = long_names_.find(node);
  return found == long_names_.end() || found->second.empty() ? node : found->second;
}

std::uint64_t Cast::name_key(CastKind kind, std::uint32_t place) const {
  if (kind == CastKind::kNode)
    return hash_(full_name(document_.text_of(document_.tokens[place]))) | 1U;
  return hash_(document_.text_of(document_.statements[place], role_of_name(kind))) | 1U;
}

std::vector<std::uint64_t> Cast::name_keys(CastKind kind) const {
  std::vector<std::uint64_t> keys;
  for (const std::uint32_t place : list(kind).places) keys.push_back(name_key(kind, place));
  return keys;
}

std::vector<std::uint64_t> Cast::message_keys(bool with_name) const {
  std::vector<std::uint64_t> keys;
  for (const std::uint32_t place : list(CastKind::kMessage).places) {
    const auto id = whole_value(document_, document_.statements[place], Role::kMessageId);
    const std::uint64_t name = with_name ? name_key(CastKind::kMessage, place) : 0;
    keys.push_back(hash_(name ^ hash_(id.value_or(0))) | 1U);
  }
  return keys;
}

Partners Cast::partners_of_messages(const Cast& before) const {
  Partners partners(list(CastKind::kMessage).places.size(), kNoPartner);
  pair_equal(before.message_keys(true), message_keys(true), partners);
  pair_equal(before.message_keys(false), message_keys(false), partners);
  pair_equal(before.name_keys(CastKind::kMessage), name_keys(CastKind::kMessage), partners);
  keep_order(partners);
  pair_gaps(partners, before.list(CastKind::kMessage).places.size());
  return partners;
}

/// Signals keep to the signals of their message.
Partners Cast::partners_of_signals(const Cast& before, const Partners& messages) const {
  const List& mine = list(CastKind::kSignal);
  const List& theirs = before.list(CastKind::kSignal);
  const auto by_message = [](const Cast& cast, const List& signals) {
    std::vector<std::vector<std::uint32_t>> result(cast.list(CastKind::kMessage).places.size());
    for (std::uint32_t i = 0; i < signals.places.size(); ++i) {
      const std::uint32_t owner = cast.document_.statements[signals.places[i]].owner;
      const auto found = std::ranges::lower_bound(cast.list(CastKind::kMessage).places, owner);
      if (owner != Statement::kNone) {
        result[static_cast<std::size_t>(found - cast.list(CastKind::kMessage).places.begin())]
            .push_back(i);
      }
    }
    return result;
  };
  const auto my_messages = by_message(*this, mine);
  const auto their_messages = by_message(before, theirs);
  const std::vector<std::uint64_t> my_names = name_keys(CastKind::kSignal);
  const std::vector<std::uint64_t> their_names = before.name_keys(CastKind::kSignal);
  Partners partners(mine.places.size(), kNoPartner);
  for (std::size_t m = 0; m < my_messages.size(); ++m) {
    if (messages[m] == kNoPartner) continue;
    const auto& my_signals = my_messages[m];
    const auto& their_signals = their_messages[messages[m]];
    const auto names_of = [](const std::vector<std::uint32_t>& signals,
                             const std::vector<std::uint64_t>& names) {
      std::vector<std::uint64_t> keys;
      keys.reserve(signals.size());
      for (const std::uint32_t signal : signals) keys.push_back(names[signal]);
      return keys;
    };
    Partners in_message(my_signals.size(), kNoPartner);
    pair_equal(names_of(their_signals, their_names), names_of(my_signals, my_names), in_message);
    keep_order(in_message);
    pair_gaps(in_message, their_signals.size());
    for (std::size_t i = 0; i < my_signals.size(); ++i)
      if (in_message[i] != kNoPartner) partners[my_signals[i]] = their_signals[in_message[i]];
  }
  return partners;
}

void Cast::take(CastKind kind, const Cast& before, const Partners& partners) {
  const List& theirs = before.list(kind);
  auto next = static_cast<std::uint32_t>(theirs.found.size());
  for (std::size_t i = 0; i < partners.size(); ++i)
    list(kind).objects[i] = partners[i] == kNoPartner ? next++ : theirs.objects[partners[i]];
}

void Cast::follow(const Cast& before) {
  const Partners messages = partners_of_messages(before);
  const Partners signals = partners_of_signals(before, messages);
  for (const CastKind kind :
       {CastKind::kVariable, CastKind::kTable, CastKind::kType, CastKind::kNode}) {
    Partners partners(list(kind).places.size(), kNoPartner);
    pair_equal(before.name_keys(kind), name_keys(kind), partners);
    keep_order(partners);
    pair_gaps(partners, before.list(kind).places.size());
    take(kind, before, partners);
  }
  take(CastKind::kMessage, before, messages);
  take(CastKind::kSignal, before, signals);
  number();
}

bool Cast::match(const Cast& other) {
  for (std::size_t kind = 0; kind < kCastKinds; ++kind) {
    if (static_cast<CastKind>(kind) == CastKind::kNode) continue;
    if (lists_[kind].places.size() != other.lists_[kind].places.size()) return false;
    lists_[kind].objects = other.lists_[kind].objects;
  }
  List& nodes = list(CastKind::kNode);
  for (std::size_t i = 0; i < nodes.places.size(); ++i) {
    const auto found =
        other.nodes_.find(full_name(document_.text_of(document_.tokens[nodes.places[i]])));
    nodes.objects[i] = found == other.nodes_.end() ? kNone : found->second;
  }
  number();
  for (const auto& [name, object] : other.nodes_) nodes_.emplace(name, object);
  const auto owners_differ = [&](std::uint32_t mine, std::uint32_t theirs) {
    return object_at(document_.statements[mine].owner) !=
           other.object_at(other.document_.statements[theirs].owner);
  };
  const Numbers& mine = list(CastKind::kSignal).places;
  const Numbers& theirs = other.list(CastKind::kSignal).places;
  for (std::size_t i = 0; i < mine.size(); ++i)
    if (owners_differ(mine[i], theirs[i])) return false;
  return true;
}

std::uint32_t Cast::object_at(std::uint32_t statement) const {
  return statement == kNone ? kNone : objects_[statement];
}

std::uint32_t Cast::object(std::uint32_t statement, const Token& token) const {
  const Statement& place = document_.statements[statement];
  switch (token.role) {
    case Role::kMessageRef: {
      const auto id = whole_value(document_, token);
      return id ? object_at(names_.message(*id)) : kNone;
    }
    case Role::kSignalRef:
    case Role::kMultiplexorRef: {
      const auto id = whole_value(document_, place, Role::kMessageRef);
      const std::uint32_t message = id ? names_.message(*id) : kNone;
      if (message == kNone) return kNone;
      return object_at(names_.signal(message, document_.text_of(token)));
    }
    case Role::kVariableRef:
      return object_at(names_.variable(document_.text_of(token)));
    case Role::kTableRef:
      return object_at(names_.table(document_.text_of(token)));
    case Role::kTypeRef:
      return object_at(names_.type(document_.text_of(token)));
    default:
      break;
  }
  const Kind kind = kind_of(token.role);
  if (!kind.has) return kNone;
  if (kind.kind != CastKind::kNode) return object_at(statement);
  const auto found = nodes_.find(full_name(document_.text_of(token)));
  return found == nodes_.end() ? kNone : found->second;
}

const Token* Cast::token(CastKind kind, std::uint32_t object) const {
  const List& objects = list(kind);
  if (object >= objects.found.size() || objects.found[object] == kNone) return nullptr;
  const std::uint32_t place = objects.places[objects.found[object]];
  if (kind == CastKind::kNode) return &document_.tokens[place];
  const Role role = kind == CastKind::kMessage ? Role::kMessageId : role_of_name(kind);
  return document_.find(document_.statements[place], role);
}

std::uint32_t Cast::statement(CastKind kind, std::uint32_t object) const {
  const List& objects = list(kind);
  if (kind == CastKind::kNode || object >= objects.found.size()) return kNone;
  return objects.found[object] == kNone ? kNone : objects.places[objects.found[object]];
}

}  // namespace zelk::check
