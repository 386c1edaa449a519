/// \file
/// Reading a DBC file, or its text, into lists.

#ifndef ZELK_READER_READ_HPP
#define ZELK_READER_READ_HPP

#include <cstdint>
#include <string_view>

#include "model/heads.hpp"

namespace zelk {

/// The caller's lists that a read extends.
struct ReadTarget : ModelHeads {
  attr_def** slots;  ///< four, in the order of `kLongNameAttributes`; null allowed. Only compared
                     ///< and set: what a caller left there may be no record
};

/// What `zelk_read` does.
std::uint32_t read_file(const char* file_name, const ReadTarget& target);

/// The same with the bytes of a file in memory; a null text is no file name.
std::uint32_t read_text(std::string_view text, const ReadTarget& target);

}  // namespace zelk

#endif
