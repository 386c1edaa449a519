#include "platform/in_place.hpp"

#include <string>

#include "platform/save_failure.hpp"

namespace zelk::platform {

void overwrite(const std::filesystem::path& copy, const std::function<void()>& write) {
  try {
    write();
  } catch (const SaveFailure& failure) {
    throw SaveFailure(std::string(failure.what()) + "; its whole content is in " +
                      copy.filename().string());
  }
  remove_copy(copy);
}

bool end_write(Progress progress, const std::filesystem::path& copy,
               const std::function<void()>& write) {
  if (progress == Progress::kUnknown) {
    throw SaveFailure("it was changed after a write that did not end; " + copy.filename().string() +
                      " has what was to be written: keep one, and remove that");
  }
  if (progress == Progress::kPart) {
    overwrite(copy, write);
  } else {
    remove_copy(copy);
  }
  return progress == Progress::kPart;
}

}  // namespace zelk::platform
