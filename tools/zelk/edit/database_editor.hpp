/// \file
/// Edits of one database, as the command line asks for them.

#ifndef ZELK_TOOL_EDIT_DATABASE_EDITOR_HPP
#define ZELK_TOOL_EDIT_DATABASE_EDITOR_HPP

#include <cstddef>
#include <span>
#include <string>
#include <unordered_set>

#include "edit/edit_target.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// Changes objects in memory; nothing is written.
///
/// Each edit takes the words behind its option, in UTF-8, and returns a line about what it did. All
/// throw RequestError when there is no such object or attribute, when a file could not hold the
/// name, when it is another object's, when the value does not suit the attribute or property, and
/// for characters that the database's encoding does not have. The database is not to be written
/// then.
class DatabaseEditor {
 public:
  using Words = std::span<std::string>;

  /// @param manager       must outlive the object, and so must the database, which it has open
  /// @param listed_nodes  as many as the file lists, the first ones; new ones come behind these, in
  ///                      front of those that only senders and the like introduce
  DatabaseEditor(ZelkWriteManager& manager, const OpenedDatabase& opened,
                 std::size_t listed_nodes = kAllNodes);
  static constexpr std::size_t kAllNodes = static_cast<std::size_t>(-1);

  std::string rename_message(Words words);   ///< message, new name
  std::string rename_signal(Words words);    ///< signal, new name
  std::string rename_node(Words words);      ///< node, new name
  std::string rename_variable(Words words);  ///< environment variable, new name
  std::string set_comment(Words words);      ///< object, text; an empty one removes the comment
  std::string set_attribute(Words words);    ///< object, attribute, value
  std::string reset_attribute(Words words);  ///< object, attribute
  std::string delete_message(Words words);   ///< message
  std::string delete_signal(Words words);    ///< signal
  std::string delete_node(Words words);      ///< node
  std::string set_property(Words words);     ///< object, property, value

  // additions.cpp

  std::string add_node(Words words);            ///< name
  std::string add_message(Words words);         ///< name, identifier, length in bytes
  std::string add_signal(Words words);          ///< "MESSAGE.SIGNAL", start bit, length in bits
  std::string set_description(Words words);     ///< object or table, number, text
  std::string delete_description(Words words);  ///< object or table, number
  std::string add_table(Words words);           ///< name
  std::string delete_table(Words words);        ///< name
  std::string add_attribute(Words words);       ///< kind of objects, name, type, default
  std::string delete_attribute(Words words);    ///< kind of objects, name

  /// What edits must not leave behind, but may in between.
  ///
  /// @throws RequestError for a signal that now reaches beyond its message, and for a minimum above
  /// the maximum
  void check_result() const;

 private:
  /// @param list  the records of which only one has a name
  template <typename Record>
  std::string rename(const Record* list, Record& record, const std::string& name);
  void set_signal(sigblk& signal, const std::string& property, const std::string& value);
  void set_message(msgblk& message, const std::string& property, const std::string& value);
  void check_id_free(std::uint32_t id, const msgblk* message) const;
  static bool is_in_frame(const sigblk& signal);
  unsigned place_for_node() const;
  const attr_def& definition(const EditTarget& target, const std::string& name) const;

  ZelkWriteManager& manager_;
  const char* name_;
  const ZelkDatabase& database_;
  Encoding encoding_;
  EditTargets targets_;
  std::unordered_set<const sigblk*>
      outside_;  ///< signals that reached beyond their messages before
  std::unordered_set<const symblk*> unlisted_;  ///< nodes
};

}  // namespace zelk::tool

#endif
