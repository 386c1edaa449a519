// Conversions without memory and on a full disk. Writes, too, come here first: the dynamic linker
// prefers the program's functions.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <cstdio>

#include "exhausted/heap.hpp"
#include "modules/conversions.hpp"
#include "support/failing.hpp"
#include "support/paths.hpp"

namespace {

/// The function that would have been called without the one here.
template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file);

std::size_t __real_fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  static auto* const real = next<decltype(fwrite)>("fwrite");
  return real(data, size, count, file);
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  return __wrap_fwrite(data, size, count, file);
}

}  // extern "C"

namespace {

class ExhaustedModule : public testing::TestWithParam<const char*> {
 protected:
  /// Fails each allocation of an operation in turn. It ends with `error` and a reason then, or well
  /// when it can do without; of an export, no file is left but by one that ends well.
  template <typename Operation, typename Check>
  void exhaust(int error, Operation operation, Check expect_whole) {
    int result = -1;
    std::size_t n = 0;
    const auto fails = [&] {
      const ExhaustedHeap heap(n, ExhaustedHeap::Extent::kOnce);
      result = operation();
      return heap.has_failed();
    };
    for (; fails(); ++n) {
      const std::string told = zelk_get_error_text();
      const bool has_reason = told.find("not enough memory") != std::string::npos;
      EXPECT_TRUE(result == 0 || (result == error && has_reason)) << n << ": " << result << told;
      EXPECT_EQ(std::filesystem::remove(out_), result == 0 && error == ZelkErrorNotWritten) << n;
      if (result == 0) expect_whole();
    }
    EXPECT_GT(n, 50U);
    EXPECT_EQ(result, 0) << zelk_get_error_text();
  }
  ZelkError exported() { return host_.exporter.Export(db_, out_.c_str()); }

  Conversions host_{GetParam()};
  const std::string out_ = host_.folder.path("out.x");
  const char* const db_ =
      host_.opened(bytes_of(ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc"));
};

TEST_P(ExhaustedModule, Heap) {
  exhaust(
      ZelkErrorNotWritten, [this] { return exported(); }, [] {});
  ASSERT_EQ(host_.import(bytes_of(out_)), "");
  std::filesystem::remove(out_);
  const std::string whole = host_.written(host_.name), in = host_.folder.path("in.x");
  host_.manager.CloseDatabase(host_.name, false);
  exhaust(
      ZelkErrorNoDatabase,
      [&] { return host_.importer.Import("imported", &host_.name, in.c_str()); },
      [&] {
        EXPECT_EQ(host_.written(host_.name), whole) << "a loss that nobody sees";
        host_.manager.CloseDatabase(host_.name, false);
      });
}

using ExhaustedRepair = ExhaustedModule;

TEST_P(ExhaustedRepair, Heap) {
  const std::string in = host_.folder.write("in.dbc", "CM_ \"IMPORT all\"; BO_ 1 A: 8 X ");
  host_.folder.write("all.dbc", bytes_of(ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc"));
  const std::string option = "--include " + host_.folder.path("");
  host_.importer.SetOption(option.c_str());
  const auto import = [&] { return host_.importer.Import("mended", &host_.name, in.c_str()); };
  ASSERT_EQ(import(), 0) << zelk_get_error_text();
  const std::string whole = host_.written(host_.name);
  host_.manager.CloseDatabase(host_.name, false);
  exhaust(ZelkErrorNoDatabase, import, [&] {
    EXPECT_EQ(host_.written(host_.name), whole) << "a loss that nobody sees";
    host_.manager.CloseDatabase(host_.name, false);
  });
}

TEST_P(ExhaustedModule, Disk) {
  {
    const FailingWrite full(1000);
    EXPECT_EQ(exported(), ZelkErrorNotWritten);
  }
  EXPECT_THAT(zelk_get_error_text(),
              testing::EndsWith("cannot be written: No space left on device\n"));
  EXPECT_FALSE(std::filesystem::exists(out_));
}

INSTANTIATE_TEST_SUITE_P(Modules, ExhaustedModule,
                         testing::Values(ZELK_JSON_MODULE, ZELK_KCD_MODULE),
                         [](const auto& module) {
                           return std::string(module.index == 0 ? "json" : "kcd");
                         });
INSTANTIATE_TEST_SUITE_P(Modules, ExhaustedRepair, testing::Values(ZELK_REPAIR_MODULE));

}  // namespace
