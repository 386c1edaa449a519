/// \file
/// The converter of KCD, for its module and for programs that have it inside them.

#ifndef ZELK_MODULES_KCD_CONVERTER_HPP
#define ZELK_MODULES_KCD_CONVERTER_HPP

#include <string_view>

#include "common/module.hpp"

namespace zelk::modules::kcd {

// As the functions of common/module.hpp.

void import_file(const char* file, const Database& database, std::string_view option);
void export_file(const char* file, const Database& database, std::string_view option);

}  // namespace zelk::modules::kcd

#endif
