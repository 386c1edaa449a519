#include "common/module.hpp"
#include "kcd/converter.hpp"

namespace zelk::modules {

void import_file(const char* file, const Database& database, std::string_view option) {
  kcd::import_file(file, database, option);
}

void export_file(const char* file, const Database& database, std::string_view option) {
  kcd::export_file(file, database, option);
}

}  // namespace zelk::modules
