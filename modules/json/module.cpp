#include "common/module.hpp"
#include "json/converter.hpp"

namespace zelk::modules {

void import_file(const char* file, const Database& database, std::string_view option) {
  json::import_file(file, database, option);
}

void export_file(const char* file, const Database& database, std::string_view option) {
  json::export_file(file, database, option);
}

}  // namespace zelk::modules
