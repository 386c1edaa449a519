#include "edit/read_back.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "diff/differences.hpp"
#include "input/database.hpp"
#include "input/lookup.hpp"
#include "term/output.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

constexpr std::size_t kMostWarnings = 10;

/// A file in a folder that nobody else has; both go with this, also when memory has run out.
class TemporaryFile {
 public:
  TemporaryFile() {
    std::random_device random;
    do {
      folder_ = std::filesystem::temp_directory_path() / fmt::format("zelk-{:08x}", random());
      file_ = folder_ / "written.dbc";
    } while (!std::filesystem::create_directory(folder_));
    std::error_code ignored;
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
    std::filesystem::remove(folder_, ignored);
  }

  std::string path() const { return file_.string(); }

 private:
  std::filesystem::path folder_;
  std::filesystem::path file_;
};

void write_to(const std::string& path, const ZelkDatabase& d) {
  const std::uint32_t error =
      zelk_write(path.c_str(), d.nodes, d.messages, d.env_vars, d.bit_timings, d.attr_defs,
                 d.attr_values, d.categories, d.filter, d.comment, d.user_data, d.signal_types,
                 d.value_tables, d.write_ext_mux);
  // A disk or a limit that leaves no room is seen by one more line, which a database may end in.
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::app);
  if (error == ZELK_OK && file << std::endl) return;
  const std::string reason = errno != 0 ? ": " + std::generic_category().message(errno) : "";
  throw RequestError(fmt::format("not written: {} cannot be written{}", escaped(path), reason));
}

std::string shown(const Difference& difference) {
  std::string line = fmt::format("{} {}", sign_of(difference), difference.object);
  for (const Change& change : difference.changes) {
    line += fmt::format("{} {}: {} -> {}", &change == &difference.changes.front() ? ":" : ",",
                        change.field, change.before.shown, change.after.shown);
  }
  return line;
}

}  // namespace

void check_read_back(EncodedDatabase database, const std::string& path) {
  const TemporaryFile temporary;
  const std::string written = temporary.path();
  write_to(written, database.records);
  DatabaseFile file;
  if (!file.open(written)) {
    const std::string report = file.reports().empty() ? "" : file.reports().front();
    throw RequestError(behind_path("not written, as it could not be read again", report));
  }
  std::size_t count = 0;
  for_each_difference(database, file.encoded(), [&](const Difference& difference) {
    if (++count > kMostWarnings) return;
    print_error(behind_path(path, "warning: in the file this is otherwise: " + shown(difference)));
  });
  if (count > kMostWarnings)
    print_error(behind_path(path, fmt::format("warning: and {} more", count - kMostWarnings)));
}

}  // namespace zelk::tool
