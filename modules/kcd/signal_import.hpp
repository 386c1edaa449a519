/// \file
/// From the element of a signal to its record.

#ifndef ZELK_MODULES_KCD_SIGNAL_IMPORT_HPP
#define ZELK_MODULES_KCD_SIGNAL_IMPORT_HPP

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kcd/element.hpp"
#include "kcd/nodes.hpp"
#include "zelk/records.h"

namespace zelk::modules::kcd {

/// A signal without its multiplexing. Texts are in the database's encoding, fields are those of
/// `sigblk`.
struct SignalData {
  std::string name;
  std::uint16_t start_bit = 0;
  std::uint16_t length = 1;
  std::uint16_t flags = 0;
  std::uint32_t value_type = ZELK_VALUE_INTEGER;
  double factor = 1;
  double offset = 0;
  double minimum = 0;
  double maximum = 0;
  std::string unit;
  std::string comment;
  std::vector<symblk*> receivers;
  std::vector<std::pair<std::int32_t, std::string>> descriptions;

  bool operator==(const SignalData&) const = default;

  /// Fills a new record.
  void fill(sigblk& record) const;
};

/// Reads a Signal, or a Multiplex without its groups as a multiplexor.
/// @throws Fault
SignalData read_signal(const Element& element, const Nodes& nodes);

}  // namespace zelk::modules::kcd

#endif
