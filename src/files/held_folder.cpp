#include "files/held_folder.hpp"

#include <new>
#include <utility>

namespace zelk::files {

namespace fs = std::filesystem;

HeldFolder::HeldFolder(fs::path path, Hold hold) : path_(std::move(path)), hold_(std::move(hold)) {}

HeldFolder::~HeldFolder() try {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
} catch (const std::bad_alloc&) {
  // The next run removes it.
}

}  // namespace zelk::files
