#include "platform/save.hpp"

#include "platform/platform.hpp"
#include "platform/save_failure.hpp"

namespace zelk::platform {

Replacement::Replacement(const char* path) {
  try {
    save_ = start_save(path, notice_);
  } catch (const SaveFailure& failure) {
    failure_ = failure.what();
  }
}

Replacement::~Replacement() = default;

std::FILE* Replacement::file() const { return save_ ? save_->file() : nullptr; }

bool Replacement::take_place() try {
  save_->take_place();
  return true;
} catch (const SaveFailure& failure) {
  failure_ = failure.what();
  return false;
}

}  // namespace zelk::platform
