#include "table/rows.hpp"

#include <algorithm>
#include <string_view>

#include "term/quoting.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// Columns that a text takes on a terminal: a character each, and a byte each when it is not UTF-8.
std::size_t width_of(std::string_view text) {
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  if (!zelk::is_utf8(text)) return text.size();
  return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, continues));
}

/// Keeps all rows until the last one is in: it is then that the widths are known.
class TableWriter : public RowWriter {
 public:
  TableWriter(const std::vector<std::string>& headings, Output& out)
      : out_(out), columns_(headings.size()) {
    for (std::size_t i = 0; i < headings.size(); ++i) add(i, escaped(headings[i]));
  }

  void row(const std::vector<Cell>& cells) override {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string text = shown(cells[i]);
      columns_[i].has_texts |= !text.empty() && !cells[i].is_number();
      columns_[i].has_numbers |= cells[i].is_number();
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

class CsvWriter : public RowWriter {
 public:
  CsvWriter(const std::vector<std::string>& headings, Output& out) : out_(out) {
    for (const std::string& heading : headings) add(heading);
    end_line();
  }

  void row(const std::vector<Cell>& cells) override {
    for (const Cell& cell : cells) add(plain(cell));
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

class JsonWriter : public RowWriter {
 public:
  JsonWriter(const std::vector<std::string>& headings, Output& out) : array_(out) {
    for (const std::string& heading : headings) keys_.push_back(utf8(heading));
  }

  void row(const std::vector<Cell>& cells) override {
    Json object;
    for (std::size_t i = 0; i < cells.size(); ++i) object[keys_[i]] = cells[i].value;
    array_.element(object);
  }

  void finish() override { array_.finish(); }

 private:
  JsonArray array_;
  std::vector<std::string> keys_;
};

}  // namespace

std::unique_ptr<RowWriter> make_row_writer(RowFormat format,
                                           const std::vector<std::string>& headings, Output& out) {
  switch (format) {
    case RowFormat::kJson:
      return std::make_unique<JsonWriter>(headings, out);
    case RowFormat::kCsv:
      return std::make_unique<CsvWriter>(headings, out);
    default:
      return std::make_unique<TableWriter>(headings, out);
  }
}

void JsonArray::element(const Json& element) {
  out_.line("{}{}", pending_.empty() ? "[" : pending_, pending_.empty() ? "" : ",");
  pending_ = element.dump();
}

void JsonArray::finish() {
  if (!pending_.empty()) out_.line("{}", pending_);
  out_.line("{}", pending_.empty() ? "[]" : "]");
}

}  // namespace zelk::tool
