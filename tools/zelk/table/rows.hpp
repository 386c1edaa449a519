/// \file
/// Tables, whatever their format; each format stands in a source of its own.

#ifndef ZELK_TOOL_TABLE_ROWS_HPP
#define ZELK_TOOL_TABLE_ROWS_HPP

#include <memory>
#include <string>
#include <vector>

#include "table/cell.hpp"
#include "term/output.hpp"

namespace zelk::tool {

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

/// Makes a writer to `out`, which must outlive it.
using MakeRows = std::unique_ptr<RowWriter>(const std::vector<std::string>& headings, Output& out);

MakeRows make_text_rows;  ///< aligned columns, numbers to the right; "-" for missing or empty
MakeRows make_json_rows;  ///< an array of objects with the headings as keys, one in a line
MakeRows make_csv_rows;   ///< RFC 4180, with a line of headings

}  // namespace zelk::tool

#endif
