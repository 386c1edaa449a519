// Files that take their places together.

#include "files/files.hpp"

#include <vector>

#include "python.hpp"

namespace zelk::python {
namespace {

/// Of what `path_from_python` gives: on Windows Python spells a path in UTF-8.
std::filesystem::path native_path(nb::handle path) {
  const std::string text = path_from_python(path);
  return std::u8string(text.begin(), text.end());
}

void take_places(nb::handle moves, nb::handle new_folders) {
  std::vector<files::Move> list;
  for (const nb::handle move : moves) {
    list.push_back({native_path(move[nb::int_(0)]), native_path(move[nb::int_(1)])});
  }
  std::vector<std::filesystem::path> folders;
  for (const nb::handle folder : new_folders) folders.push_back(native_path(folder));
  std::optional<files::FailedMove> failed;
  {
    const nb::gil_scoped_release unlocked;
    failed = files::take_places(list, folders);
  }
  if (!failed) return;
  const std::u8string place = failed->place.u8string();
  throw Failure(FailureKind::kWrite, to_utf8(failed->reason, encoding_of(failed->reason)),
                std::string(place.begin(), place.end()));
}

}  // namespace

void bind_files(nb::module_& module) {
  module.def("take_places", take_places, nb::arg("moves"), nb::arg("new_folders"),
             nb::sig("def take_places(moves: collections.abc.Iterable[tuple[str, str]], "
                     "new_folders: collections.abc.Iterable[str]) -> None"));
}

}  // namespace zelk::python
