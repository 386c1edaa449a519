/// \file
/// Which nodes send a message, receive a signal or access an environment variable.

#ifndef ZELK_CHECK_FAULTS_LINKS_HPP
#define ZELK_CHECK_FAULTS_LINKS_HPP

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/seeded_hash.hpp"
#include "check/faults/analysis.hpp"

namespace zelk::check {

/// Answers for relations, "BA_REL_". Looks at the document at the first question only.
class Links {
 public:
  /// @param analysis  must outlive the object
  explicit Links(const Analysis& analysis) : in_(analysis) {}

  /// Whether the node of a relation is linked to its object. True also for what cannot be told: the
  /// placeholder for no node, an object that there is not.
  bool has_link(std::uint32_t relation);

 private:
  using NameSet = std::unordered_set<std::string_view, SeededHash>;

  std::uint32_t object_of(const Statement& relation) const;
  /// The statement that lists the nodes which send a message: the message's own, or the last
  /// "BO_TX_BU_" for it that names some.
  std::uint32_t sender_list(std::uint32_t message);
  const NameSet& nodes_of(std::uint32_t statement);

  const Analysis& in_;
  std::unordered_map<std::uint32_t, NameSet> nodes_;  ///< by statement that lists them
  std::unordered_map<std::uint32_t, std::uint32_t> senders_;
  bool has_senders_ = false;
};

}  // namespace zelk::check

#endif
