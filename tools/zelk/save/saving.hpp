/// \file
/// Writing a database to a file of the library's own format, and reporting how that went.

#ifndef ZELK_TOOL_SAVE_SAVING_HPP
#define ZELK_TOOL_SAVE_SAVING_HPP

#include <functional>
#include <string>

#include "input/encoded_database.hpp"

namespace zelk::tool {

/// Writes the database to a temporary file and reads that. Values that change, such as
/// numbers of more than 14 digits, are printed on standard error as warnings about `path`.
///
/// @throws RequestError that says why when it cannot be read back
void check_trial_write(EncodedDatabase database, const std::string& path);

/// Calls `write` with the signals held back that end a program, so that none leaves a half-written
/// file. Warnings of a save that succeeds are printed on standard error, about `path`.
///
/// @throws RequestError that says why when the database is not written
void save(const ZelkDatabase& database, const std::string& path,
          const std::function<ZelkError()>& write);

/// Why a save ended with `error`, by that and the error text, which was empty before the save.
std::string write_complaint(ZelkError error, const ZelkDatabase& database);

}  // namespace zelk::tool

#endif
