#include "save/replace_file.hpp"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "base/quoting.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "term/output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

[[noreturn]] void fail(const std::string& reason) {
  throw RequestError("could not be written: " + escaped(utf8(reason)));
}

}  // namespace

ReplacedFile::ReplacedFile(const std::string& path) : file_(path.c_str(), files::Content::kBytes) {
  if (!file_.notice().empty()) print_error(behind_path(path, "warning: " + utf8(file_.notice())));
  if (!file_.file()) fail(file_.failure());
}

void ReplacedFile::write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.file()) != bytes.size())
    fail(std::generic_category().message(errno));
}

void ReplacedFile::take_place() {
  if (!file_.take_place()) fail(file_.failure());
}

void replace_file(const std::string& path, std::string_view bytes) {
  const HeldSignals held;
  ReplacedFile file(path);
  file.write(bytes);
  file.take_place();
}

void end_earlier_write(const std::string& path) {
  const HeldSignals held;
  if (files::has_unended_write(path.c_str())) const ReplacedFile ended(path);
}

}  // namespace zelk::tool
