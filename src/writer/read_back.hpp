/// \file
/// What a file could not give back.

#ifndef ZELK_WRITER_READ_BACK_HPP
#define ZELK_WRITER_READ_BACK_HPP

#include <optional>
#include <string>

#include "model/heads.hpp"

namespace zelk {

/// Why a file written of the model could not be read, or would give other records: a number outside
/// what the format has at its place, a name that is no identifier, a reference to a record that the
/// model does not hold, or that stands behind another one of its name. What every write changes
/// (dbc.h: digits, ends of texts, names that are replaced by a substitute) does not count.
///
/// @return the first such record and what is wrong with it; none when there is none
std::optional<std::string> read_back_fault(const ModelView& model);

}  // namespace zelk

#endif
