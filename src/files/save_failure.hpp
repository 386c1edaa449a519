/// \file
/// Why a save cannot go on.

#ifndef ZELK_FILES_SAVE_FAILURE_HPP
#define ZELK_FILES_SAVE_FAILURE_HPP

#include <stdexcept>
#include <string>
#include <system_error>

namespace zelk::files {

/// Ends a save; `what()` is a text for people, without the name of the file.
class SaveFailure : public std::runtime_error {
  using runtime_error::runtime_error;
};

/// @param reason  of the system
/// @param step  what the system refused, where the reason alone does not say it
[[noreturn]] inline void fail_save(std::error_code reason, const std::string& step = {}) {
  throw SaveFailure(step.empty() ? reason.message() : step + ": " + reason.message());
}

}  // namespace zelk::files

#endif
