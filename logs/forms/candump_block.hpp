/// \file
/// Parses blocks of lines that candump has written.

#ifndef ZELK_LOGS_FORMS_CANDUMP_BLOCK_HPP
#define ZELK_LOGS_FORMS_CANDUMP_BLOCK_HPP

#include <cstdint>
#include <optional>

#include "logs/forms/form.hpp"

namespace zelk::logs {

/// Makes frames of a chunk of whole lines.
///
/// @param chunk  its bytes are taken, for those that the block had
/// @param sum    times are differences, and add up from here on; none: points in time
void parse_candump_block(Chunk& chunk, std::optional<std::int64_t> sum, ZelkLogBlock& block);

/// A time that is later by a difference, or the bound of all times.
std::int64_t later(std::int64_t time, std::int64_t difference);

}  // namespace zelk::logs

#endif
