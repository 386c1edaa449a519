/// \file
/// Numbers and codes of records in the words that all outputs share.

#ifndef ZELK_TOOL_WORDS_RECORD_WORDS_HPP
#define ZELK_TOOL_WORDS_RECORD_WORDS_HPP

#include "check/objects/record_words.hpp"

namespace zelk::tool {

using check::byte_order;
using check::env_var_type;
using check::id_format;
using check::number_format;
using check::padded_id;
using check::presence_values;
using check::range_text;
using check::shown_id;

}  // namespace zelk::tool

#endif
