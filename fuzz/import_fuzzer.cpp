// Imports any bytes by a converter module: as KCD what begins with "<", as JSON all else. What is
// accepted is written in that form again, which must be accepted too. The sanitizers judge.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "memory_file.hpp"
#include "zelk/converter.hpp"

namespace {

constexpr const char* kSecondFile = "/dev/shm/zelk_fuzz_import";

/// A module, loaded once, and the manager that it fills databases for.
class Module {
 public:
  explicit Module(const char* file)
      : importer_(manager_, file, "zelk_import"), exporter_(manager_, file, "zelk_export") {
    if (!importer_.GetFunction("zelk_import")) std::abort();
  }

  void run(const std::string& file) {
    const char* first = nullptr;
    if (importer_.Import("first", &first, file.c_str()) == ZelkErrorOk) again(first);
    manager_.CloseDatabase(false);
  }

 private:
  /// A refused export has a reason in the error text; what was written must be read.
  void again(const char* first) {
    const std::string path = kSecondFile + std::to_string(getpid());
    const bool is_written = exporter_.Export(first, path.c_str()) == ZelkErrorOk;
    if (!is_written && *zelk_get_error_text() == '\0') std::abort();
    if (is_written && importer_.Import("second", nullptr, path.c_str()) != ZelkErrorOk) {
      std::fputs(zelk_get_error_text(), stderr);
      std::abort();
    }
    std::remove(path.c_str());
  }

  ZelkWriteManager manager_{static_cast<void*>(nullptr)};
  ZelkImporter importer_;
  ZelkExporter exporter_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Module json(ZELK_JSON_MODULE);
  static Module kcd(ZELK_KCD_MODULE);
  const MemoryFile file(data, size);
  (size > 0 && data[0] == '<' ? kcd : json).run(file.path());
  return 0;
}
