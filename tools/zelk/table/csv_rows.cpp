#include <string_view>

#include "base/quoting.hpp"
#include "table/rows.hpp"

namespace zelk::tool {

namespace {

class CsvRows : public RowWriter {
 public:
  CsvRows(const std::vector<std::string>& headings, Output& out) : out_(out) {
    for (const std::string& heading : headings) add(heading);
    end_line();
  }

  void row(const std::vector<Cell>& cells) override {
    for (const Cell& cell : cells) add(cell.text() ? *cell.text() : shown(cell));
    end_line();
  }

  void finish() override {}

 private:
  void add(std::string_view text) {
    line_ += csv_field(text);
    line_ += ',';
  }

  void end_line() {
    line_.back() = '\r';
    out_.line("{}", line_);
    line_.clear();
  }

  Output& out_;
  std::string line_;
};

}  // namespace

std::unique_ptr<RowWriter> make_csv_rows(const std::vector<std::string>& headings, Output& out) {
  return std::make_unique<CsvRows>(headings, out);
}

}  // namespace zelk::tool
