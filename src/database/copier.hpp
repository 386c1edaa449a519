/// \file
/// Deep copies of databases.

#ifndef ZELK_DATABASE_COPIER_HPP
#define ZELK_DATABASE_COPIER_HPP

#include <unordered_map>

#include "zelk/database.hpp"

namespace zelk {

/// Copies the lists and texts of one database into another, emptied one.
///
/// A list is copied record by record, and each reference is replaced by one to the copy of the
/// referred record. So lists that others refer to are copied first.
class DatabaseCopier {
 public:
  DatabaseCopier(const ZelkDatabase& source, ZelkDatabase& target)
      : source_(source), target_(target) {}

  /// @return false when memory ran out for some of it; the error text says so
  bool copy();

 private:
  template <typename Record, typename CopyMembers>
  Record* copy_list(const Record* source, CopyMembers copy_members) const;
  template <typename Record, typename CopyMembers>
  void copy_whole(Record*& target, const Record* source, CopyMembers copy_members);
  void copy_whole(char*& target, const char* source);
  template <typename Record>
  void remember(const Record* source, Record* copy);
  template <typename Record>
  void forget(const Record* source);
  template <typename Record>
  Record* rebind(const Record* reference, Record* list) const;

  void copy_attr(const attr& value, attr& copy) const;
  attr* copy_attrs(const attr* source) const;
  val* copy_values(const val* source) const;
  void copy_link(const rxblk& link, rxblk& copy) const;
  rxblk* copy_links(const rxblk* source) const;
  void copy_definitions();
  void copy_signal_types();
  void copy_nodes();
  void copy_messages();
  void copy_signals(const msgblk& source, msgblk& copied_message);
  void copy_groups(const msgblk& source, msgblk& copied_message) const;
  void copy_variables();
  void copy_texts();

  const ZelkDatabase& source_;
  ZelkDatabase& target_;
  std::unordered_map<const void*, void*> copies_;  ///< of the records that others refer to
  bool is_complete_ = true;
};

}  // namespace zelk

#endif
