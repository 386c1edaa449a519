// Runs a fuzzer on files, without libFuzzer: all arguments, and all files of those that are
// folders.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> files_of(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// @return false when it cannot be read
bool run(const fs::path& path) {
  std::printf("%s\n", path.string().c_str());
  std::fflush(stdout);  // the last line names the input that ends the process
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file.is_open() || file.bad()) return false;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  std::size_t inputs = 0;
  for (const fs::path& path : std::vector<fs::path>(arguments + 1, arguments + count)) {
    for (const fs::path& file : files_of(path)) {
      if (!run(file)) {
        std::fprintf(stderr, "%s: cannot be read\n", file.string().c_str());
        return 1;
      }
      ++inputs;
    }
  }
  if (inputs == 0) std::fputs("no inputs\n", stderr);
  return inputs == 0 ? 1 : 0;
}
