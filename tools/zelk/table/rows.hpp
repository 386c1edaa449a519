/// \file
/// Tables, as text and for programs.

#ifndef ZELK_TOOL_TABLE_ROWS_HPP
#define ZELK_TOOL_TABLE_ROWS_HPP

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "table/cell.hpp"
#include "term/output.hpp"

namespace zelk::tool {

enum class RowFormat {
  kTable,  ///< aligned columns, numbers to the right; "-" for what is missing or empty
  kJson,   ///< an array of objects with the headings as keys, one in a line
  kCsv,    ///< RFC 4180, with a line of headings
};

/// Writes the rows of one table.
class RowWriter {
 public:
  virtual ~RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  /// @param cells  one for each heading
  virtual void row(const std::vector<Cell>& cells) = 0;
  /// To be called once, behind the last row.
  virtual void finish() = 0;

 protected:
  RowWriter() = default;
};

/// @param out  must outlive the writer
std::unique_ptr<RowWriter> make_row_writer(RowFormat format,
                                           const std::vector<std::string>& headings, Output& out);

/// Writes the elements of a JSON array, one in a line.
class JsonArray {
 public:
  explicit JsonArray(Output& out) : out_(out) {}

  void element(const Json& element);  ///< whose texts are in UTF-8
  void finish();

 private:
  Output& out_;
  std::string pending_;  // the last element, which gets a comma or not
};

}  // namespace zelk::tool

#endif
