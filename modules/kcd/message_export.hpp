/// \file
/// From the records of messages and signals to their elements.

#ifndef ZELK_MODULES_KCD_MESSAGE_EXPORT_HPP
#define ZELK_MODULES_KCD_MESSAGE_EXPORT_HPP

#include <cstdint>
#include <map>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "kcd/left_out.hpp"
#include "zelk/records.h"

namespace zelk::modules::kcd {

/// The identifiers by which a file refers to its nodes.
using NodeIds = std::unordered_map<const symblk*, std::string>;

/// The reason for which a message is left out, as `LeftOut` notes it; null when there is none.
const char* obstacle(const msgblk& message);

/// Builds the element of one message, with the database's texts as they are. Leaves out signals
/// that the file would describe wrongly.
class MessageExport {
 public:
  MessageExport(const msgblk& message, const NodeIds& ids, LeftOut& left_out)
      : message_(message), ids_(ids), left_out_(left_out) {}

  /// @return the new element, last in `bus`
  pugi::xml_node append_to(pugi::xml_node bus);

 private:
  using Signals = std::vector<const sigblk*>;

  void append_id(pugi::xml_node element) const;
  void choose_signals();
  void choose_multiplexors();
  void place_signal(const sigblk& signal);
  const char* select(const sigblk& signal);
  void append_multiplexor(pugi::xml_node parent, const sigblk& signal);
  void append_signal(pugi::xml_node element, const sigblk& signal);
  static void append_geometry(pugi::xml_node element, const sigblk& signal);
  static void append_value(pugi::xml_node element, const sigblk& signal);
  static void append_labels(pugi::xml_node element, const sigblk& signal);
  void append_nodes(pugi::xml_node parent, const char* tag,
                    const std::vector<const symblk*>& nodes);
  std::vector<const symblk*> producers();
  void count_losses(const sigblk& signal);

  const msgblk& message_;
  const NodeIds& ids_;
  LeftOut& left_out_;
  Signals chosen_;  ///< in the order of the list, as are the next two
  Signals multiplexors_;
  Signals plain_;
  std::set<const sigblk*> multiplexor_set_;
  /// Of each multiplexor, the signals that each of its values selects.
  std::map<const sigblk*, std::map<std::uint32_t, Signals>> groups_;
};

}  // namespace zelk::modules::kcd

#endif
