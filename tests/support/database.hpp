/// A database as a host of the C interface holds it, and its description in one line per record.
#ifndef ZELK_TESTS_SUPPORT_DATABASE_HPP
#define ZELK_TESTS_SUPPORT_DATABASE_HPP

#include <string>
#include <string_view>

#include "model/heads.hpp"
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

inline zelk::ModelView view_of(const Lists& d) {
  return {d.nodes,      d.messages, d.variables, d.timings, d.definitions, d.values,
          d.categories, d.filter,   d.comment,   d.version, d.types,       d.tables};
}

/// Every record in list order, one per line; parts that are absent are left out.
std::string describe(const zelk::ModelView& model);
inline std::string describe(const Lists& lists) { return describe(view_of(lists)); }

/// A text in which apostrophes stand for double quotes.
inline std::string with_quotes(std::string text) {
  for (char& c : text) c = c == '\'' ? '"' : c;
  return text;
}

#endif
