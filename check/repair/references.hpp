/// \file
/// Mends of references to what no statement introduces.

#ifndef ZELK_CHECK_REPAIR_REFERENCES_HPP
#define ZELK_CHECK_REPAIR_REFERENCES_HPP

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "check/repair/mender.hpp"
#include "check/statements/fault.hpp"

namespace zelk::check {

/// Drops what refers to unknown messages, signals, variables, tables, types and categories; unknown
/// nodes join the list of nodes. An identifier that lacks, or has by mistake, the bit of extended
/// frames gets the one of its message.
class References {
 public:
  explicit References(Mender& mender) : mender_(mender) {}

  void mend(const Fault& fault);

  /// Nodes that shall join the list of nodes, in the order in which they were found.
  const std::vector<std::string_view>& new_nodes() const { return new_nodes_; }

 private:
  void mend_message(const Fault& fault);
  void mend_member(const Fault& fault, std::string_view noun);
  void mend_node(const Fault& fault);

  Mender& mender_;
  std::vector<std::string_view> new_nodes_;
  std::set<std::string_view> known_;
};

/// Adds definitions for attributes that have values, but none, made from these values.
///
/// @param faults  those of kind `kUnknownAttribute` are mended
void infer_definitions(Mender& mender, std::span<const Fault> faults);

}  // namespace zelk::check

#endif
