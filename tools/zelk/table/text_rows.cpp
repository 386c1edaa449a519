#include <algorithm>
#include <string_view>

#include "table/rows.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Keeps all rows until the last one is in: it is then that the widths are known.
class TextRows : public RowWriter {
 public:
  TextRows(const std::vector<std::string>& headings, Output& out)
      : out_(out), columns_(headings.size()) {
    for (std::size_t i = 0; i < headings.size(); ++i) add(i, escaped(headings[i]));
  }

  void row(const std::vector<Cell>& cells) override {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string text = shown(cells[i]);
      const bool is_number = cells[i].number() != nullptr;
      columns_[i].has_texts |= !text.empty() && !is_number;
      columns_[i].has_numbers |= is_number;
      add(i, text.empty() ? "-" : text);
    }
  }

  void finish() override {
    for (std::size_t cell = 0; cell < ends_.size(); cell += columns_.size()) {
      line_.clear();
      for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (i > 0) line_ += "  ";
        append(columns_[i], cell + i);
      }
      line_.resize(line_.find_last_not_of(' ') + 1);
      out_.line("{}", line_);
    }
  }

 private:
  struct Column {
    std::size_t width = 0;
    bool has_texts = false;
    bool has_numbers = false;

    bool goes_right() const { return has_numbers && !has_texts; }
  };

  void add(std::size_t column, std::string_view text) {
    texts_ += text;
    ends_.push_back(texts_.size());
    columns_[column].width = std::max(columns_[column].width, width_of(text));
  }

  void append(const Column& column, std::size_t cell) {
    const std::size_t start = cell == 0 ? 0 : ends_[cell - 1];
    const std::string_view text = std::string_view(texts_).substr(start, ends_[cell] - start);
    const std::size_t padding = column.width - width_of(text);
    if (column.goes_right()) line_.append(padding, ' ');
    line_ += text;
    if (!column.goes_right()) line_.append(padding, ' ');
  }

  Output& out_;
  std::vector<Column> columns_;
  std::string texts_;              // of all cells, row by row
  std::vector<std::size_t> ends_;  // in it
  std::string line_;
};

}  // namespace

std::unique_ptr<RowWriter> make_text_rows(const std::vector<std::string>& headings, Output& out) {
  return std::make_unique<TextRows>(headings, out);
}

}  // namespace zelk::tool
