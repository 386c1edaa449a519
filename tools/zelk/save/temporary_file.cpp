#include "save/temporary_file.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <fstream>
#include <random>
#include <system_error>

#include "input/lookup.hpp"
#include "term/text.hpp"
#include "zelk/dbc.h"
#include "zelk/errors.h"

namespace zelk::tool {

TemporaryFile::TemporaryFile() {
  constexpr int kMostLeft = 32;  // names that killed runs may have left: these are looked at
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  if (error) {
    throw RequestError("not written: there is no folder for temporary files (TMPDIR): " +
                       error.message());
  }
  std::random_device random;
  for (int i = 0; !folder_ && !error; ++i) {
    const std::string name =
        i < kMostLeft ? fmt::format("zelk-{}", i) : fmt::format("zelk-{:08x}", random());
    folder_ = files::HeldFolder::make(folder / name, error);
  }
  if (!error) return;
  throw RequestError(fmt::format("not written: no file can be made in {}: {}",
                                 escaped(folder.string()), error.message()));
}

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

}  // namespace zelk::tool
