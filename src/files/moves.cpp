#include <cerrno>
#include <set>

#include "files/files.hpp"
#include "files/save.hpp"
#include "files/save_failure.hpp"

namespace zelk::files {

namespace {

namespace fs = std::filesystem;

void check_no_folder(const fs::path& place) {
  std::error_code ignored;
  if (fs::is_directory(place, ignored)) fail_save({EISDIR, std::generic_category()});
}

}  // namespace

std::optional<FailedMove> take_places(const std::vector<Move>& moves,
                                      const std::vector<fs::path>& new_folders) {
  std::set<fs::path> folders;
  const fs::path* at = nullptr;
  try {
    for (const fs::path& folder : new_folders) folders.insert(folder.parent_path());
    for (const Move& move : moves) {
      at = &move.place;
      check_no_folder(move.place);
      make_ready(move.fresh, move.place);
      folders.insert(move.place.parent_path());
    }
    for (const Move& move : moves) {
      at = &move.place;
      move_over(move.fresh, move.place);
    }
    for (const fs::path& folder : folders) {
      at = &folder;
      sync_folder(folder);
    }
  } catch (const SaveFailure& failure) {
    return FailedMove{*at, failure.what()};
  }
  return std::nullopt;
}

}  // namespace zelk::files
