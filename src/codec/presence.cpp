#include "codec/presence.hpp"

#include <optional>

#include "codec/raw_value.hpp"

namespace zelk::codec {
namespace {

/// Whether the signal's multiplexor, taken as present, selects it.
bool is_selected(const unsigned char* frame, const sigblk& signal) {
  std::optional<std::uint32_t> value;
  const sigblk& multiplexor = *signal.mux_signal;
  return read_masked(frame, access_mask(multiplexor), multiplexor, value) == ZelkSigvalueOk &&
         is_selected_by(signal, *value);
}

}  // namespace

bool is_present_multiplexed(const unsigned char* frame, const sigblk& signal) {
  MultiplexorsAbove above(signal);
  for (const sigblk* level = &signal; level; level = above.next()) {
    if (!is_multiplexed(*level)) return true;
    if (!level->mux_signal || !is_selected(frame, *level)) return false;
  }
  return false;  // a circle
}

}  // namespace zelk::codec
