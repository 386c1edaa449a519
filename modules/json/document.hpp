/// \file
/// The text of a document and its values.

#ifndef ZELK_MODULES_JSON_DOCUMENT_HPP
#define ZELK_MODULES_JSON_DOCUMENT_HPP

#include <nlohmann/json.hpp>
#include <string_view>

namespace zelk::modules::json {

/// Parses a document in UTF-8, with or without a byte order mark, in memory linear in its size.
///
/// @throws Fault with the line: for what is not JSON, a number beyond the range of a double, a key
/// that an object has twice, and arrays and objects more than 32 deep in each other
nlohmann::json parse(std::string_view text);

}  // namespace zelk::modules::json

#endif
