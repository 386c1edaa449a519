#include "check/repair/renames.hpp"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/characters.hpp"
#include "base/seeded_hash.hpp"
#include "check/findings/sentences.hpp"
#include "check/repair/announced.hpp"
#include "check/repair/plain_names.hpp"
#include "check/repair/renamed_objects.hpp"
#include "check/repair/split_names.hpp"

namespace zelk::check {

namespace {

/// Tokens of the longest name with blanks.
constexpr std::uint32_t kMostTokens = 34;

bool is_name_fault(FaultKind kind) {
  return kind == FaultKind::kOddName || kind == FaultKind::kKeywordName ||
         kind == FaultKind::kTooLong;
}

class Renames {
 public:
  Renames(Mender& mender, std::span<const Fault> faults)
      : mender_(mender),
        faults_(faults),
        split_(split_names(mender, faults)),
        renamed_(split_.size() + static_cast<std::size_t>(
                                     std::ranges::count_if(faults, is_name_fault, &Fault::kind))) {}

  void run() {
    // What is introduced comes first.
    for (const Fault& fault : split_)
      if (!mender_.is_settled(fault.statement)) rename(fault);
    // What was taken for indicators is none, once the text is read again.
    mender_.has_new_statements |= !split_.empty();
    for (const bool introduced : {true, false}) {
      for (const Fault& fault : faults_)
        if (concerns(fault) && naming(fault).is_introduced == introduced) rename(fault);
    }
    if (renamed_.empty()) return;
    rename_with_blanks();
    find_comments();
    mender_.findings.reserve(mender_.findings.size() + renamed_.all().size());
    for (const Renamed& each : renamed_.all()) tell(each);
  }

 private:
  bool concerns(const Fault& fault) const {
    const bool may_be = is_name_fault(fault.kind) && mender_.is_on(fault.kind) &&
                        !mender_.is_settled(fault.statement) &&
                        mender_.statement(fault.statement).is_readable;
    if (!may_be) return false;
    const Token& token = mender_.token(fault.token);
    // An odd indicator has a mend of its own, or is a part of the signal's name.
    if (fault.kind != FaultKind::kTooLong) return token.role != Role::kIndicator;
    return token.kind == TokenKind::kName && naming_of(token.role).kind != NameKind::kOther;
  }

  Naming naming(const Fault& fault) const { return naming_of(mender_.token(fault.token).role); }

  /// The message whose signals a statement names, or the statement that has a name of its own.
  std::uint32_t owner_of(NameKind kind, std::uint32_t index) const {
    const Statement& statement = mender_.statement(index);
    if (kind == NameKind::kMessage) return index;
    if (kind != NameKind::kSignal && kind != NameKind::kGroup) return kNoStatement;
    if (statement.kind == Word::kSignal) return statement.owner;
    const auto id = whole_value(mender_.document, statement, Role::kMessageRef);
    return id ? mender_.names.message(*id) : kNoStatement;
  }

  static std::string key_of(NameKind kind, std::uint32_t owner, std::string_view name) {
    return std::to_string(static_cast<int>(kind)) + ' ' + std::to_string(owner) + ' ' +
           std::string(name);
  }

  void rename(const Fault& fault) {
    const Token& token = mender_.token(fault.token);
    const NameKind kind = naming(fault).kind;
    const std::uint32_t owner = owner_of(kind, fault.statement);
    const std::uint32_t end = mender_.token(fault.token_end - 1).end;
    const std::string_view name = mender_.document.source.text(token.begin, end);
    Renamed* renamed = renamed_.find(kind, owner, name);
    // Of what is only referred to, nodes are added to their list; all else is unknown and goes. A
    // keyword has to be a name before it can be looked for.
    const bool may_be_new = naming(fault).is_introduced || kind == NameKind::kNode ||
                            fault.kind == FaultKind::kKeywordName;
    if (!renamed && !may_be_new) return;
    if (renamed) {
      ++renamed->references;
    } else {
      renamed = &renamed_.add({kind, owner, name, new_name(kind, owner, name), &fault});
    }
    mender_.edits.replace(token.begin, end, renamed->new_name);
  }

  std::string new_name(NameKind kind, std::uint32_t owner, std::string_view old_name) {
    std::string plain = plain_name(old_name);
    const bool is_kept_short = kind == NameKind::kTable || kind == NameKind::kType;
    if (is_kept_short) plain.resize(std::min(plain.size(), kKeptName));
    if (!is_taken(kind, owner, plain, old_name)) return plain;
    if (kind == NameKind::kMessage) owner = kNoStatement;  // unique among all messages
    std::size_t& number = last_numbers_.try_emplace(key_of(kind, owner, plain), 1).first->second;
    std::string name;
    do {
      name = numbered_name(plain, ++number);
    } while (is_taken(kind, owner, name, old_name));
    return name;
  }

  /// Of tables and types the first 32 characters count, which may be those of the old name, too.
  bool is_taken(NameKind kind, std::uint32_t owner, std::string_view name,
                std::string_view old_name) {
    const Names& names = mender_.names;
    if (announced_.contains(name) || renamed_.has_given(kind, owner, name)) return true;
    switch (kind) {
      case NameKind::kMessage:
        return message_names().contains(name);
      case NameKind::kSignal:
        return owner != kNoStatement && names.signal(owner, name) != kNoStatement;
      case NameKind::kNode:
        return names.node(name) != kNoStatement;
      case NameKind::kVariable:
        return names.variable(name) != kNoStatement;
      case NameKind::kTable:
        return is_another(names.table(name), Role::kTable, old_name);
      case NameKind::kType:
        return is_another(names.type(name), Role::kType, old_name);
      default:
        return false;
    }
  }

  bool is_another(std::uint32_t statement, Role role, std::string_view old_name) const {
    return statement != kNoStatement &&
           mender_.document.text_of(mender_.statement(statement), role) != old_name;
  }

  const std::unordered_set<std::string_view, SeededHash>& message_names() {
    if (!message_names_.empty()) return message_names_;
    message_names_.insert("");
    for (const Statement& statement : mender_.document.statements) {
      if (statement.kind == Word::kMessage)
        message_names_.insert(mender_.document.text_of(statement, Role::kMessage));
    }
    return message_names_;
  }

  // --- References to names with blanks, which no statement can be read with ---

  void rename_with_blanks() {
    std::unordered_set<std::string, SeededHash> first_words;
    for (const Renamed& each : renamed_.all()) {
      if (each.kind == NameKind::kSignal && each.has_blanks()) {
        first_words.insert(
            key_of(each.kind, each.owner, each.old_name.substr(0, each.old_name.find(' '))));
      }
    }
    if (first_words.empty()) return;
    for (std::uint32_t i = 0; i < mender_.document.statements.size(); ++i) {
      const Statement& statement = mender_.statement(i);
      const bool may_refer = statement.kind != Word::kMessage && statement.kind != Word::kSignal &&
                             !mender_.is_settled(i);
      if (may_refer && owner_of(NameKind::kSignal, i) != kNoStatement) rewrite(i, first_words);
    }
  }

  void rewrite(std::uint32_t index,
               const std::unordered_set<std::string, SeededHash>& first_words) {
    const Document& document = mender_.document;
    const Statement& statement = mender_.statement(index);
    const std::uint32_t owner = owner_of(NameKind::kSignal, index);
    std::string text;
    std::uint32_t at = document.begin_of(statement);
    Renamed* last = nullptr;
    for (const Token& token : document.tokens_of(statement)) {
      const bool may_begin = token.kind != TokenKind::kText && token.kind != TokenKind::kMark;
      if (!may_begin || token.begin < at) continue;
      const bool is_first =
          first_words.contains(key_of(NameKind::kSignal, owner, document.text_of(token)));
      Renamed* const named = is_first ? name_at(token, statement, owner) : nullptr;
      if (!named) continue;
      text += document.source.text(at, token.begin);
      text += named->new_name;
      at = token.begin + static_cast<std::uint32_t>(named->old_name.size());
      ++named->references;
      last = named;
    }
    if (!last) return;
    text += document.source.text(at, std::max(at, document.end_of(statement)));
    if (statement.kind == Word::kComment) keep_old_name(text, *last);
    mender_.rewrite(index, std::move(text));
  }

  /// At the end of a comment that is rewritten.
  void keep_old_name(std::string& comment, Renamed& each) const {
    const std::size_t quote = comment.rfind('"');
    if (quote == std::string::npos || comment.find('"') == quote) return;
    const bool is_empty = comment.find('"') == quote - 1;
    comment.insert(quote, old_name_line(each, is_empty));
    each.is_told = true;
  }

  /// @param is_first  nothing stands in front of it in the comment
  std::string old_name_line(const Renamed& each, bool is_first) const {
    return std::string(is_first ? "" : mender_.document.source.line_end()) +
           "Original name: " + escaped(each.old_name);
  }

  /// The longest name with blanks that begins at a token; null when none does.
  Renamed* name_at(const Token& token, const Statement& statement, std::uint32_t owner) {
    const auto first = static_cast<std::uint32_t>(&token - mender_.document.tokens.data());
    const std::uint32_t end = std::min(statement.end, first + kMostTokens);
    Renamed* longest = nullptr;
    for (std::uint32_t last = first + 1; last < end; ++last) {
      const std::string_view name =
          mender_.document.source.text(token.begin, mender_.token(last).end);
      Renamed* const found = renamed_.find(NameKind::kSignal, owner, name);
      if (found && found->has_blanks()) longest = found;
    }
    return longest;
  }

  // --- The old name in the comment ---

  /// The reader keeps the last comment of an object.
  void find_comments() {
    for (std::uint32_t i = 0; i < mender_.document.statements.size(); ++i) {
      const Statement& statement = mender_.statement(i);
      const bool may_be =
          statement.kind == Word::kComment && statement.is_readable && !mender_.is_dropped(i);
      if (!may_be) continue;
      for (const Role role :
           {Role::kSignalRef, Role::kNodeRef, Role::kVariableRef, Role::kTypeRef}) {
        if (const Token* const token = mender_.document.find(statement, role))
          set_comment(naming_of(role).kind, i, mender_.document.text_of(*token));
      }
      const bool is_of_message = mender_.document.find(statement, Role::kMessageRef) &&
                                 !mender_.document.find(statement, Role::kSignalRef);
      if (!is_of_message) continue;
      const std::uint32_t message = owner_of(NameKind::kSignal, i);
      if (message == kNoStatement) continue;
      const Statement& there = mender_.statement(message);
      Renamed* const found = renamed_.find(NameKind::kMessage, message,
                                           mender_.document.text_of(there, Role::kMessage));
      if (found) found->comment = i;
    }
  }

  void set_comment(NameKind kind, std::uint32_t statement, std::string_view name) {
    Renamed* const found = renamed_.find(kind, owner_of(kind, statement), name);
    if (found) found->comment = statement;
  }

  void tell(const Renamed& each) {
    const Fault& fault = *each.fault;
    std::string message = shown(each.old_name) + " renamed to " + each.new_name;
    if (each.references != 0) message += ", and in " + counted(each.references, "reference");
    mender_.note(fault.kind, fault.statement, fault.token, fault.token + 1, std::move(message));
    if (each.is_told) return;
    if (each.comment != kNoStatement) {
      append_to_comment(each);
    } else if (const std::string object = object_of(each); !object.empty()) {
      mender_.add(place_of(Word::kComment),
                  "CM_ " + object + " \"Original name: " + escaped(each.old_name) + "\";");
    }
  }

  void append_to_comment(const Renamed& each) {
    const Token* const text =
        mender_.document.find(mender_.statement(each.comment), Role::kComment);
    if (!text) return;
    const bool is_empty = mender_.document.content_of(*text).empty();
    const std::string added = old_name_line(each, is_empty);
    if (text->kind == TokenKind::kText) {
      mender_.edits.insert_before(text->end - 1, added);
    } else {
      mender_.edits.insert_behind(text->end, added);
    }
  }

  /// Names have no quotes; a backslash at the end would escape that of the comment.
  static std::string escaped(std::string_view name) {
    return std::string(name) + (name.ends_with('\\') ? " " : "");
  }

  /// The identifier of the message, when a reference finds this one; else empty.
  std::string identifier_of(std::uint32_t message) const {
    if (message == kNoStatement) return "";
    const Statement& statement = mender_.statement(message);
    const auto id = whole_value(mender_.document, statement, Role::kMessageId);
    return id && mender_.names.message(*id) == message ? std::to_string(*id) : "";
  }

  /// As comments name it; empty for what can have none.
  std::string object_of(const Renamed& each) const {
    const std::string id = identifier_of(each.owner);
    switch (each.kind) {
      case NameKind::kMessage:
        return id.empty() ? "" : "BO_ " + id;
      case NameKind::kSignal:
        return id.empty() ? "" : "SG_ " + id + ' ' + each.new_name;
      case NameKind::kNode:
        return "BU_ " + each.new_name;
      case NameKind::kVariable:
        return "EV_ " + each.new_name;
      case NameKind::kType:
        return "SGTYPE_ " + each.new_name;
      default:
        return "";
    }
  }

  Mender& mender_;
  std::span<const Fault> faults_;
  const std::vector<Fault> split_;
  RenamedObjects renamed_;
  NameSet announced_ = announced_names(mender_.document);
  std::unordered_map<std::string, std::size_t, SeededHash> last_numbers_;  ///< behind new names
  std::unordered_set<std::string_view, SeededHash> message_names_;
};

}  // namespace

void mend_names(Mender& mender, std::span<const Fault> faults) { Renames(mender, faults).run(); }

}  // namespace zelk::check
