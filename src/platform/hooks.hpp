/// \file
/// Sends notifications and messages to what the host registered, or else to the system.

#ifndef ZELK_PLATFORM_HOOKS_HPP
#define ZELK_PLATFORM_HOOKS_HPP

#include <cstdint>

#include "zelk/platform.h"

namespace zelk::platform {

void notify(const zelk_notification& notification);
void tell_user(const char* text, const char* title, std::uint32_t style);

}  // namespace zelk::platform

#endif
