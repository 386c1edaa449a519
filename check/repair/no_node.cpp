#include "check/repair/no_node.hpp"

#include <map>
#include <string>
#include <vector>

#include "check/findings/sentences.hpp"
#include "zelk/records.h"

namespace zelk::check {

namespace {

class NoNodes {
 public:
  explicit NoNodes(Mender& mender) : mender_(mender) {}

  void run() {
    for (std::uint32_t i = 0; i < mender_.document.statements.size(); ++i) mend(i);
    for (const auto& [name, uses] : uses_) {
      mender_.note(FaultKind::kNoNode, uses.first,
                   "node " + std::string(name) + " stands for no node, taken out of " +
                       counted(uses.count, "place"));
    }
  }

 private:
  struct Uses {
    Span first;
    std::uint32_t count = 0;
  };

  static bool can_stand(Role role) {
    return role == Role::kNode || role == Role::kTransmitter || role == Role::kReceiver ||
           role == Role::kAccessNode || role == Role::kNodeRef;
  }

  void mend(std::uint32_t index) {
    const Statement& statement = mender_.statement(index);
    std::vector<std::uint32_t> names;  // tokens
    std::size_t others = 0;
    for (std::uint32_t i = statement.first; i < statement.end; ++i) {
      if (!can_stand(mender_.token(i).role)) continue;
      const bool is_no_node = mender_.options.no_node.contains(mender_.text_of(i));
      if (is_no_node) names.push_back(i);
      if (!is_no_node) ++others;
    }
    if (names.empty() || mender_.is_settled(index)) return;
    for (const std::uint32_t token : names) count(token);
    const bool is_about_one =
        mender_.token(names[0]).role == Role::kNodeRef && statement.kind != Word::kFilter;
    const bool is_empty_list = statement.kind == Word::kTransmitters && others == 0;
    if (is_about_one || is_empty_list) {
      return mender_.drop(FaultKind::kNoNode, index,
                          std::string(mender_.text_of(names[0])) + " stands for no node");
    }
    take_out(names, others);
  }

  void count(std::uint32_t token) {
    Uses& uses = uses_[mender_.text_of(token)];
    if (uses.count++ == 0) uses.first = {mender_.token(token).begin, mender_.token(token).end};
  }

  /// A list between commas needs one name.
  void take_out(const std::vector<std::uint32_t>& names, std::size_t others) {
    const Role role = mender_.token(names[0]).role;
    const bool has_commas = role != Role::kNode && role != Role::kNodeRef;
    std::size_t first = 0;
    if (has_commas && others == 0) mender_.replace_token(names[first++], ZELK_NO_NODE);
    std::uint32_t begin = Statement::kNone;  // of the list's rest, when all in front is gone
    for (; first < names.size(); ++first) {
      const std::uint32_t token = names[first];
      const bool is_first = token == begin || !mender_.token(token - 1).is_mark(',');
      if (!has_commas) {
        mender_.erase_tokens(token, token + 1);
      } else if (is_first) {
        begin = token + 2;
        mender_.edits.erase(mender_.token(token).begin, mender_.token(begin).begin);
      } else {
        mender_.erase_tokens(token - 1, token + 1);
      }
    }
  }

  Mender& mender_;
  std::map<std::string_view, Uses> uses_;
};

}  // namespace

void remove_no_nodes(Mender& mender) {
  const bool is_wanted = !mender.options.no_node.empty() && mender.is_on(FaultKind::kNoNode);
  if (is_wanted) NoNodes(mender).run();
}

}  // namespace zelk::check
