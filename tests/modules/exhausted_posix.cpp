// Conversions without memory and on a full disk. The allocations and writes of the test program,
// and of all that it loads, come here first: the dynamic linker prefers the program's functions.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "modules/conversions.hpp"
#include "support/failing.hpp"

namespace {

using FailingHeap = FailingAllocation<struct Heap>;

bool is_disk_full = false;

/// The function that would have been called without the one here.
template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Whether this allocation is the one to fail; as the system then says.
bool fails() {
  const bool is_the_one = FailingHeap::count();
  if (is_the_one) errno = ENOMEM;
  return is_the_one;
}

void* take(std::size_t size) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  static auto* const real = next<void*(std::size_t)>("malloc");
  return fails() ? nullptr : real(size);
}

void* calloc(std::size_t count, std::size_t size) {
  static auto* const real = next<void*(std::size_t, std::size_t)>("calloc");
  return fails() ? nullptr : real(count, size);
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  static auto* const real = next<decltype(fwrite)>("fwrite");
  if (!is_disk_full) return real(data, size, count, file);
  errno = ENOSPC;
  return real(data, size, count / 2, file);
}

}  // extern "C"

void* operator new(std::size_t size) { return take(size); }
void* operator new[](std::size_t size) { return take(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace {

class Exhausted : public testing::TestWithParam<const char*> {
 protected:
  /// Fails each allocation of an operation in turn, which is to end with `error` then, or well when
  /// it can do without, and leaves the error text that it had at the end.
  template <typename Operation>
  void exhaust(int error, Operation operation) {
    int result = -1;
    std::size_t n = 0;
    for (; fails_at<FailingHeap>(n, [&] { result = operation(); }); ++n) {
      const std::string text = zelk_get_error_text();
      const bool is_told = text.find("not enough memory") != std::string::npos;
      EXPECT_TRUE(result == 0 || (result == error && is_told)) << n << ": " << result << text;
      EXPECT_EQ(std::filesystem::remove(out_), result == 0 && error == ZelkErrorNotWritten) << n;
    }
    EXPECT_GT(n, 100U);
    EXPECT_EQ(result, 0) << zelk_get_error_text();
  }

  Conversions host_{GetParam()};
  const std::string out_ = host_.folder.path("out.x");
  const char* const db_ =
      host_.opened(bytes_of(ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc"));
};

TEST_P(Exhausted, Heap) {
  exhaust(ZelkErrorNotWritten, [this] { return host_.exporter.Export(db_, out_.c_str()); });
  const std::string in = host_.folder.write("in.x", bytes_of(out_));
  std::filesystem::remove(out_);
  exhaust(ZelkErrorNoDatabase, [&] {
    const char* name = nullptr;
    const ZelkError error = host_.importer.Import("imported", &name, in.c_str());
    if (error == 0) host_.manager.CloseDatabase(name, false);
    return error;
  });
}

TEST_P(Exhausted, Disk) {
  is_disk_full = true;
  EXPECT_EQ(host_.exporter.Export(db_, out_.c_str()), 9);
  is_disk_full = false;
  EXPECT_THAT(zelk_get_error_text(),
              testing::EndsWith("the file cannot be written: No space left on device\n"));
  EXPECT_FALSE(std::filesystem::exists(out_));
}

INSTANTIATE_TEST_SUITE_P(Modules, Exhausted, testing::Values(ZELK_JSON_MODULE, ZELK_KCD_MODULE));

}  // namespace
