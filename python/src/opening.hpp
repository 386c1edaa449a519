/// \file
/// Reading database files of any format.

#ifndef ZELK_PYTHON_OPENING_HPP
#define ZELK_PYTHON_OPENING_HPP

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "model.hpp"

namespace zelk::python {

enum class FileFormat : std::uint8_t { kDbc, kKcd, kJson };

/// By the extension, case ignored; DBC for all that are unknown.
FileFormat format_of(const std::string& path);

/// Reads a file. Needs nothing of Python.
///
/// @param repairs  a file of DBC is mended
/// @throws Failure
std::shared_ptr<Model> open_model(const std::string& path, bool repairs);

/// All that is wrong with a text of DBC that the reader refuses.
Failure refusal_of(const std::string& path, std::string text);

/// When the file was changed last; none when that cannot be found out.
std::optional<std::filesystem::file_time_type> file_time_of(const std::string& path);

/// All bytes of a file.
/// @throws Failure
std::string read_bytes(const std::string& path);

}  // namespace zelk::python

#endif
