/// \file
/// What records have in common, as data of templates.
///
/// A page shows the beginning of what is very long, and says so: a browser that is given a comment
/// of 100 MB shows nothing at all.

#ifndef ZELK_TOOL_REPORT_RECORD_DATA_HPP
#define ZELK_TOOL_REPORT_RECORD_DATA_HPP

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "base/encoding.hpp"
#include "zelk/records.h"

namespace zelk::tool {

inline constexpr std::size_t kMostTextBytes = 20000;
inline constexpr std::size_t kMostValues = 1000;

/// {"text", "cut"}: a text of a record, and a note about what is left out of it; null for no text.
nlohmann::json text_data(std::string_view text, Encoding encoding);

/// At most so many bytes of a text in one line, in UTF-8; "..." stands for the rest.
std::string brief(std::string_view text, Encoding encoding, std::size_t most_bytes);

/// {"list": [{"name", "text", "cut"}]}; null for none.
nlohmann::json attributes_data(const attr* values, Encoding encoding);

/// {"list": [{"number", "text"}], "long", "cut"}: value descriptions; "long" is their number when
/// there are many. Null for none.
nlohmann::json values_data(const val* values, Encoding encoding);

}  // namespace zelk::tool

#endif
