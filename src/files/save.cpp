#include "files/save.hpp"

#include "files/files.hpp"
#include "files/save_failure.hpp"

namespace zelk::files {

Replacement::Replacement(const char* path, Content content) {
  try {
    save_ = start_save(path, content, notice_);
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

}  // namespace zelk::files
