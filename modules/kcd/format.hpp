/// \file
/// What importing and exporting KCD have in common.
///
///     NetworkDefinition
///       Document                  version, and the description as text
///       Node                      id, name
///       Bus                       name, baudrate
///         Message                 id, name, length, format, interval
///           Notes
///           Producer              NodeRef: the transmitters
///           Multiplex             a signal that selects others, written like one
///             MuxGroup            count: the value for which its signals are there
///               Signal
///           Signal                name, offset, length, endianess
///             Notes
///             Consumer            NodeRef: the receivers
///             Value               type, slope, intercept, unit, min, max
///             LabelSet            Label: value and name; LabelGroup: from, to and name

#ifndef ZELK_MODULES_KCD_FORMAT_HPP
#define ZELK_MODULES_KCD_FORMAT_HPP

#include <cstdint>

#include "zelk/module.h"

namespace zelk::modules::kcd {

inline constexpr const char* kNamespace = "http://kayak.2codeornot2code.org/1.0";

inline constexpr std::uint32_t kMaxDataBytes = 64;
inline constexpr std::uint32_t kMaxDataBits = kMaxDataBytes * 8;
inline constexpr std::uint32_t kMaxStandardId = 0x7FF;
inline constexpr std::uint32_t kMaxExtendedId = 0x1FFFFFFF;
/// Most values of a label group, each of which becomes a description, and of a multiplexor, for
/// each of which a signal is written in a group.
inline constexpr std::uint32_t kMaxExpandedValues = 256;
/// Largest value of the attributes below.
inline constexpr std::int32_t kMaxAttribute = INT32_MAX;

/// An attribute of the database that is a part of the format in KCD.
struct KcdAttribute {
  const char* name;
  zelk_obj_t object_type;
  std::int32_t value_type;
};

inline constexpr KcdAttribute kBusName = {"DBName", ZELK_OBJ_NETWORK, ZELK_ATTR_STRING};
/// In bit/s.
inline constexpr KcdAttribute kBaudrate = {"Baudrate", ZELK_OBJ_NETWORK, ZELK_ATTR_INT};
/// In milliseconds.
inline constexpr KcdAttribute kInterval = {"GenMsgCycleTime", ZELK_OBJ_MESSAGE, ZELK_ATTR_INT};

}  // namespace zelk::modules::kcd

#endif
