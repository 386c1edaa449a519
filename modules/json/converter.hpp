/// \file
/// The converter of JSON, for its module and for programs that have it inside them.

#ifndef ZELK_MODULES_JSON_CONVERTER_HPP
#define ZELK_MODULES_JSON_CONVERTER_HPP

#include <string_view>

#include "common/module.hpp"

namespace zelk::modules::json {

// As the functions of common/module.hpp.

void import_file(const char* file, const Database& database, std::string_view option);
void export_file(const char* file, const Database& database, std::string_view option);

}  // namespace zelk::modules::json

#endif
