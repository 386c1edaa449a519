/// \file
/// Lookups of a read by hash. Each gives what a walk of the list would: the first match.

#ifndef ZELK_READER_MODEL_INDEX_HPP
#define ZELK_READER_MODEL_INDEX_HPP

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "base/seeded_hash.hpp"
#include "model/heads.hpp"

namespace zelk {

/// Holds the records that were in the lists before the read, and those added since. They must be
/// added in list order. Keys borrow the records' names.
class ModelIndex {
 public:
  explicit ModelIndex(const ModelHeads& model);

  void add(symblk* node);
  void add(msgblk* message);
  void add(env_var_blk* variable);
  void add(cat* category);
  void add(sigtype* type);
  void add(valtable* table);

  // Null when there is none. Tables and types are compared on the length of inline names.
  symblk* node(std::string_view name) const;
  msgblk* message(std::uint32_t id);
  env_var_blk* variable(std::string_view name) const;
  cat* category(std::int32_t number) const;
  sigtype* type(std::string_view name) const;
  valtable* table(std::string_view name) const;

  /// The named signal of a message whose signals are all there.
  sigblk* signal(const msgblk& message, std::string_view name);
  /// The link to `node` in a list of links that is complete.
  rxblk* link(rxblk* links, const symblk* node);

 private:
  template <typename Record>
  using ByName = std::unordered_map<std::string_view, Record*, SeededHash>;
  using Links = std::unordered_map<const symblk*, rxblk*>;

  ByName<symblk> nodes_;
  std::unordered_map<std::uint32_t, msgblk*, SeededHash> messages_;
  ByName<env_var_blk> variables_;
  std::unordered_map<std::int32_t, cat*, SeededHash> categories_;
  ByName<sigtype> types_;
  ByName<valtable> tables_;
  // Statements about one message come in a row, and messages in the order of the list.
  msgblk* last_message_ = nullptr;
  bool has_doubled_ids_ = false;  ///< the next message may not be the first with its identifier

  // Long lists inside records, indexed when they are first asked. Short ones are walked.
  std::unordered_map<const msgblk*, ByName<sigblk>> long_signal_lists_;
  std::unordered_map<const rxblk*, Links> long_link_lists_;
};

}  // namespace zelk

#endif
