/// \file
/// Records as readable text.

#ifndef ZELK_TOOL_SHOW_DESCRIBE_HPP
#define ZELK_TOOL_SHOW_DESCRIBE_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/enum_items.hpp"
#include "input/opening.hpp"
#include "term/output.hpp"
#include "words/j1939.hpp"

namespace zelk::tool {

/// Writes records as readable text: a heading line, and everything the record holds in lines
/// indented below it. What a record does not have (a comment, attributes, ...) takes no line.
class Describer {
 public:
  /// The records and `out` must outlive the object.
  Describer(EncodedDatabase database, Output& out);

  void database(std::string_view path) const;

  void message(const msgblk& message) const;         ///< with its bit matrix and its signals
  void signal_alone(const sigblk& signal) const;     ///< under a heading that names the message
  void group_alone(const siggroupblk& group) const;  ///< likewise
  void node(const symblk& node) const;
  void node_and_traffic(
      const symblk& node) const;  ///< with the messages it sends and the signals it receives
  void env_var(const env_var_blk& variable) const;
  void value_table(const valtable& table) const;
  void signal_type(const sigtype& type) const;
  void definition(const attr_def& definition) const;
  void category(const cat& category) const;

 private:
  using GroupsOfSignal = std::unordered_map<const sigblk*, std::vector<const siggroupblk*>>;

  void message_heading(const msgblk& message) const;
  void message_details(const msgblk& message) const;
  void transmitters(const msgblk& message) const;
  void signals(const msgblk& message) const;
  void signal_details(const sigblk& signal, const GroupsOfSignal& groups) const;
  void multiplexing(const sigblk& signal) const;
  void layout(const msgblk& message) const;
  void group(const siggroupblk& group) const;
  void filter() const;

  /// A text of a record, `escaped`.
  std::string shown(std::string_view text) const;
  /// Likewise `in_quotes`.
  std::string quoted(std::string_view text) const;
  /// ", unit "km/h""; empty for none.
  std::string unit(const char* text) const;
  /// "factor 0.5, offset -40, range -40 to 215, unit "degC""
  template <typename Scaled>
  std::string scaling(const Scaled& scaled) const;
  std::string multiplexor_name(const sigblk& signal) const;
  std::string legend_remarks(const sigblk& signal, std::uint32_t dlc, bool drawn) const;
  void comment(const char* text) const;
  void category_line(const cat* category) const;
  void attributes(const attr* values) const;
  void values(const val* values) const;
  /// "role: A, B", and a line for each relation attribute value of a link.
  void nodes(std::string_view role, const rxblk* links) const;

  static GroupsOfSignal groups_of(const msgblk& message);

  const ZelkDatabase& database_;
  IndexedEnumItems items_;  ///< keeps looking up values quick while the object lives
  Encoding encoding_;
  Output& out_;
  ParameterGroups parameter_groups_;
};

}  // namespace zelk::tool

#endif
