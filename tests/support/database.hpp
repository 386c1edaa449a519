/// A database as a host of the C interface holds it, read from texts and files.
#ifndef ZELK_TESTS_SUPPORT_DATABASE_HPP
#define ZELK_TESTS_SUPPORT_DATABASE_HPP

#include <string>
#include <string_view>

#include "support/description.hpp"
#include "support/lists.hpp"

/// A file of the given content in the working directory, removed by the destructor. One per test at
/// a time.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view content);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

struct Database : Lists {
  /// Reads into the lists; returns the error number and leaves the reported lines in `reported`.
  uint32_t read(std::string_view content);
  uint32_t read_file(const char* path);
  uint32_t read_text(std::string_view content);

  std::string reported;  ///< message lines of the last read, each ended by a line feed
};

/// A text in which apostrophes stand for double quotes.
inline std::string with_quotes(std::string text) {
  for (char& c : text) c = c == '\'' ? '"' : c;
  return text;
}

#endif
