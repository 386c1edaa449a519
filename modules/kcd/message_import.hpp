/// \file
/// From the element of a message to its record.

#ifndef ZELK_MODULES_KCD_MESSAGE_IMPORT_HPP
#define ZELK_MODULES_KCD_MESSAGE_IMPORT_HPP

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "kcd/element.hpp"
#include "kcd/nodes.hpp"
#include "kcd/signal_import.hpp"
#include "zelk/records.h"

namespace zelk::modules::kcd {

/// Fills one message.
class MessageImport {
 public:
  MessageImport(Reading& reading, const Element& element, const Nodes& nodes)
      : reading_(reading), element_(element), nodes_(nodes) {}

  /// Fills a new record with everything but its attributes.
  /// @throws Fault
  void fill(msgblk& message);

 private:
  static constexpr std::size_t kNone = SIZE_MAX;

  struct Signal {
    SignalData data;
    std::size_t multiplexor = kNone;    ///< index of the one that selects it
    std::set<std::uint32_t> selectors;  ///< the multiplexor's values for which it is there
  };

  std::uint32_t read_id() const;
  std::uint16_t read_dlc() const;
  void add_signal(const Element& element, const SignalData& data, std::size_t multiplexor = kNone,
                  std::uint32_t selector = 0);
  void add_multiplexor(const Element& element);
  void add_group(const Element& group, std::size_t multiplexor);
  void fill_transmitters(msgblk& message) const;
  void fill_signals(msgblk& message) const;
  static void fill_ranges(sigblk& record, const std::set<std::uint32_t>& selectors);

  Reading& reading_;
  const Element& element_;
  const Nodes& nodes_;
  std::vector<Signal> signals_;  ///< a multiplexor stands in front of what it selects
  std::map<std::string, std::size_t> by_name_;
};

}  // namespace zelk::modules::kcd

#endif
