// Reads any bytes as a database, writes it, and reads and writes that again. What a file can give
// back comes back: the same records, and the same bytes. What it cannot is refused when it is
// saved.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "expect.hpp"
#include "writer/read_back.hpp"
#include "writer/writer.hpp"
#include "written_words.hpp"

namespace {

/// The bytes of a file, written to memory.
std::string written(const Lists& lists) {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* const file = open_memstream(&bytes, &size);
  expect(file != nullptr, "no memory");
  const zelk::ModelView model = view_of(lists);
  {
    zelk::ShortNameCache names(model);
    zelk::TextOutput out(file);
    zelk::Writer(model, names, out).write(true);
  }
  std::fclose(file);
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
  return {bytes, size};
}

std::uint32_t read(Lists& lists, const std::string& text) {
  zelk_clear_error_text();
  zelk_reset_symbols_shortened();
  return lists.read_by(zelk_try_read_text, text.data(), text.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lists first;
  if (read(first, std::string(reinterpret_cast<const char*>(data), size)) != ZELK_OK) return 0;
  // Saving refuses both: what a file cannot express, and names that were cut on reading.
  if (zelk_symbols_shortened() != 0 || zelk::read_back_fault(view_of(first))) return 0;
  const std::string once = written(first);
  Lists second;
  expect(read(second, once) == ZELK_OK, zelk_get_thread_error_text(), once);
  const std::string before = written_words(view_of(first));
  const std::string after = written_words(view_of(second));
  expect(before == after, "other records", before + "---\n" + after);
  const std::string twice = written(second);
  expect(once == twice, "another file", once + "---\n" + twice);
  return 0;
}
