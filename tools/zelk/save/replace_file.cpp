#include "save/replace_file.hpp"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "files/files.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "term/output.hpp"
#include "term/quoting.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

[[noreturn]] void fail(const std::string& reason) {
  throw RequestError("could not be written: " + escaped(utf8(reason)));
}

}  // namespace

void replace_file(const std::string& path, std::string_view bytes) {
  const HeldSignals held;
  files::Replacement file(path.c_str(), files::Content::kBytes);
  if (!file.notice().empty()) print_error(behind_path(path, "warning: " + utf8(file.notice())));
  if (!file.file()) fail(file.failure());
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.file()) != bytes.size())
    fail(std::generic_category().message(errno));
  if (!file.take_place()) fail(file.failure());
}

}  // namespace zelk::tool
