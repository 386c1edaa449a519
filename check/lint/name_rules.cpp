// Names of objects: doubled, too long, or hard to tell apart.

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/characters.hpp"
#include "base/hash_table.hpp"
#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "check/lint/context.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kLongestShortName = 32;

constexpr Rule kDoubledSignal{
    "doubled-signal",
    Severity::kError,
    "Two signals of a message have one name",
    "Everything else in the file finds the first of the two: comments, value descriptions, "
    "attributes. "
    "The other one can be neither shown nor encoded by its name, and many tools refuse the file.",
    " SG_ Speed : 0|16@1+ (1,0) [0|0] \"\" Cluster\n SG_ Speed : 16|16@1+ (1,0) [0|0] \"\" "
    "Cluster\n",
    "Rename one of the two, or delete it."};

constexpr Rule kDoubled{"doubled-name",
                        Severity::kWarning,
                        "Two objects of a kind have one name",
                        "Messages, nodes, environment variables, value tables, signal types, and "
                        "attribute definitions for "
                        "objects of one kind are found by their names: the first one is. Code that "
                        "is generated for two "
                        "messages of one name does not compile.",
                        "BO_ 256 Speed: 8 Gateway\nBO_ 257 Speed: 8 Gateway\n",
                        "Rename one of the two, or delete it."};

constexpr Rule kCase{"names-differ-in-case",
                     Severity::kWarning,
                     "Two names differ only in upper and lower case",
                     "They are two names for this format, but one for people, and for tools and "
                     "programming languages "
                     "that do not tell cases apart.",
                     " SG_ Speed : 0|16@1+ (1,0) [0|0] \"\" Cluster\n SG_ SPEED : 16|16@1+ (1,0) "
                     "[0|0] \"\" Cluster\n",
                     "Give one of the two a name that tells what is different."};

constexpr Rule kLong{
    "long-name",
    Severity::kNote,
    "A name has more than 32 characters",
    "The format has room for 32. Longer names are refused or cut by many tools; names of value "
    "tables, signal types, groups and attribute definitions by this one. A full name goes into an "
    "attribute such as SystemSignalLongSymbol, with a short one in its place; zelk rewrite does "
    "so.",
    "BO_ 256 InstrumentClusterIlluminationStatus: 8 Gateway\n",
    "Shorten the name, or rewrite the file.",
    {"longest", kLongestShortName, 1, 1023, "Characters that a name may have."}};

constexpr Rule kCollision{
    "long-name-collision",
    Severity::kWarning,
    "Two long names begin with the same 32 characters",
    "Cut to 32 characters they are the same name. Tools then number one of them (_0000), as this "
    "one "
    "does, or take the two for one.",
    " SG_ InstrumentClusterIlluminationStatusLeft : 0|8@1+ (1,0) [0|0] \"\" Cluster\n"
    " SG_ InstrumentClusterIlluminationStatusRight : 8|8@1+ (1,0) [0|0] \"\" Cluster\n",
    "Choose names that differ in their first 32 characters."};

bool is_same_folded(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, to_upper, to_upper);
}

/// Compares the names of objects of one kind with each other.
class NameCheck {
 public:
  /// @param kind      "message"
  /// @param doubled   the rule for names that come twice
  /// @param capacity  names that will be entered, at most
  NameCheck(const LintContext& context, std::string_view kind, const Rule& doubled,
            std::size_t capacity)
      : context_(context), kind_(kind), doubled_(doubled), names_(capacity) {
    entries_.reserve(capacity);
  }

  /// @param name   the object's
  /// @param token  its name in the text, which may be a short form; `Statement::kNone` for none
  void enter(std::string_view name, std::uint32_t statement, std::uint32_t token) {
    entries_.push_back({name, statement, token});
    check_length();
    compare();
    if (name.size() > kLongestShortName) compare_beginning();
  }

  /// @param role  of the name in its statement
  void enter(std::string_view name, std::uint32_t statement, Role role) {
    const Document& document = context_.document;
    const Token* const token = statement == Statement::kNone
                                   ? nullptr
                                   : document.find(document.statements[statement], role);
    const auto index = token ? token - document.tokens.data() : std::ptrdiff_t{Statement::kNone};
    enter(name, statement, static_cast<std::uint32_t>(index));
  }

 private:
  struct Entry {
    std::string_view name;
    std::uint32_t statement;
    std::uint32_t token;
  };
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  Span span_of(const Entry& entry) const {
    const auto& tokens = context_.document.tokens;
    return entry.token < tokens.size() ? context_.span_of(tokens[entry.token]) : Span{};
  }

  void check_length() {
    const Entry& entry = entries_.back();
    const std::size_t size =
        entry.token == Statement::kNone
            ? 0
            : context_.document.content_of(context_.document.tokens[entry.token]).size();
    if (static_cast<double>(size) <= longest_) return;
    context_.report(kLong, entry.statement, span_of(entry), [&](Finding& finding) {
      finding.message = join("the name has ", size, " characters, more than ", longest_);
    });
  }

  /// With equal names, or else with those that differ in case.
  void compare() {
    const auto index = static_cast<std::uint32_t>(entries_.size() - 1);
    const std::string_view name = entries_.back().name;
    folded_ = name;
    for (char& c : folded_) c = to_upper(c);
    const std::uint64_t key = hash_(folded_);
    const std::uint32_t same =
        names_.enter(key, index, [&](std::uint32_t i) { return entries_[i].name == name; });
    if (same != index)
      return report(doubled_, same, join("another ", kind_, " has the name ", name));
    const std::uint32_t alike =
        names_.find(key, [&](std::uint32_t i) { return is_same_folded(entries_[i].name, name); });
    if (alike != index)
      report(kCase, alike, join("the name differs only in case from ", entries_[alike].name));
  }

  void compare_beginning() {
    const auto index = static_cast<std::uint32_t>(entries_.size() - 1);
    const std::string_view name = entries_.back().name;
    const auto [found, is_new] = beginnings_.emplace(name.substr(0, kLongestShortName), index);
    if (is_new || entries_[found->second].name == name) return;
    report(kCollision, found->second,
           join("the name begins with the same 32 characters as ", entries_[found->second].name));
  }

  void report(const Rule& rule, std::uint32_t other, const std::string& message) {
    const Entry& entry = entries_.back();
    context_.report(rule, entry.statement, span_of(entry), [&](Finding& finding) {
      finding.message = message;
      finding.related.push_back({span_of(entries_[other]), join("the first ", kind_)});
    });
  }

  const LintContext& context_;
  const std::string_view kind_;
  const Rule& doubled_;
  const double longest_ = context_.reports.parameter(kLong);
  SeededHash hash_;
  std::vector<Entry> entries_;
  HashTable<std::uint64_t, std::uint32_t, kNone> names_;  ///< by names in capitals
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> beginnings_;  ///< of long names
  std::string folded_;
};

void check_message(const LintContext& context, const PlacedMessage& message) {
  const auto signals = context.places.signals(message);
  NameCheck names(context, "signal", kDoubledSignal, signals.size());
  for (const PlacedSignal& signal : signals)
    names.enter(view(signal.record->name), signal.statement, Role::kSignal);
}

void check_messages_and_variables(const LintContext& context) {
  NameCheck messages(context, "message", kDoubled, context.places.messages().size());
  for (const PlacedMessage& message : context.places.messages())
    messages.enter(view(message.record->name), message.statement, Role::kMessage);
  NameCheck variables(context, "environment variable", kDoubled, context.places.variables().size());
  for (const PlacedVariable& variable : context.places.variables())
    variables.enter(view(variable.record->name), variable.statement, Role::kVariable);
}

/// The list of nodes as it stands in the text: the reader takes a doubled name once.
void check_nodes(const LintContext& context) {
  std::size_t count = context.places.unlisted_nodes().size();
  for (const Statement& statement : context.statements())
    if (statement.kind == Word::kNodes) count += context.document.tokens_of(statement).size();
  NameCheck nodes(context, "node", kDoubled, count);
  for (const Statement& statement : context.statements()) {
    if (statement.kind != Word::kNodes) continue;
    for (const Token& token : context.document.tokens_of(statement)) {
      if (token.role != Role::kNode) continue;
      nodes.enter(context.document.text_of(token), context.index_of(statement),
                  static_cast<std::uint32_t>(&token - context.document.tokens.data()));
    }
  }
  for (const PlacedNode& node : context.places.unlisted_nodes())
    nodes.enter(view(node.record->name), Statement::kNone, node.token);
}

/// Names of value tables, signal types or definitions of attributes.
void check_statements(const LintContext& context, std::string_view kind, Role role,
                      const auto& is_one) {
  const auto count = std::ranges::count_if(context.statements(), is_one);
  NameCheck names(context, kind, kDoubled, static_cast<std::size_t>(count));
  for (const Statement& statement : context.statements()) {
    if (is_one(statement))
      names.enter(context.document.text_of(statement, role), context.index_of(statement), role);
  }
}

/// An attribute for signal types is defined like one for signals, which may bear the same name.
void check_definitions(const LintContext& context) {
  std::unordered_set<std::string_view, SeededHash> of_types;
  std::set<std::pair<Word, Word>> kinds;
  const auto kind_of = [&](const Statement& statement) {
    const Token* const object = context.document.find(statement, Role::kObject);
    return std::pair(statement.kind, object ? object->word : Word::kNone);
  };
  for (const Statement& statement : context.statements()) {
    if (statement.kind == Word::kTypeDefinition)
      of_types.insert(context.document.text_of(statement, Role::kAttributeRef));
    if (statement.kind == Word::kDefinition || statement.kind == Word::kRelationDefinition)
      kinds.insert(kind_of(statement));
  }
  for (const auto& kind : kinds) {
    check_statements(context, "attribute definition", Role::kAttribute, [&](const Statement& s) {
      return s.is_readable && s.kind == kind.first && kind_of(s) == kind &&
             !of_types.contains(context.document.text_of(s, Role::kAttribute));
    });
  }
}

void check_database(const LintContext& context) {
  check_messages_and_variables(context);
  check_nodes(context);
  check_statements(context, "value table", Role::kTable, [](const Statement& statement) {
    return statement.is_readable && statement.kind == Word::kValueTable;
  });
  check_statements(context, "signal type", Role::kType, [](const Statement& statement) {
    return statement.is_readable && statement.kind == Word::kSignalType;
  });
  check_definitions(context);
}

constexpr const Rule* kRules[] = {&kDoubledSignal, &kDoubled, &kCase, &kLong, &kCollision};

}  // namespace

const RuleGroup kNameRules = {kRules, check_message, check_database};

}  // namespace zelk::check
