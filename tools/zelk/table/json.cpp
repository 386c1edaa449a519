#include "table/json.hpp"

#include <nlohmann/json.hpp>

#include "base/quoting.hpp"
#include "table/rows.hpp"

namespace zelk::tool {

namespace {

Json json_of(double number, bool is_hexadecimal) {
  if (is_hexadecimal) return static_cast<std::uint64_t>(number);
  if (is_whole(number)) return static_cast<std::int64_t>(number);
  return number;
}

Json json_of(const CellElement& element) {
  if (!element.number) return element.text;
  return {{"value", *element.number}, {"text", element.text}};
}

class JsonRows : public RowWriter {
 public:
  JsonRows(const std::vector<std::string>& headings, Output& out) : array_(out) {
    for (const std::string& heading : headings) keys_.push_back(utf8(heading));
  }

  void row(const std::vector<Cell>& cells) override { array_.element(object_of(keys_, cells)); }
  void finish() override { array_.finish(); }

 private:
  JsonArray array_;
  std::vector<std::string> keys_;
};

}  // namespace

Json json_of(const Cell& cell) {
  if (const double* const number = cell.number()) return json_of(*number, cell.hex_digits > 0);
  if (const std::string* const text = cell.text()) return *text;
  if (const bool* const yes = std::get_if<bool>(&cell.value)) return *yes;
  if (cell.is_none()) return nullptr;
  Json array = Json::array();
  for (const CellElement& element : *cell.list()) array.push_back(json_of(element));
  return array;
}

Json object_of(const std::vector<std::string>& keys, const std::vector<Cell>& cells) {
  Json object;
  for (std::size_t i = 0; i < keys.size(); ++i) object[keys[i]] = json_of(cells[i]);
  return object;
}

std::unique_ptr<RowWriter> make_json_rows(const std::vector<std::string>& headings, Output& out) {
  return std::make_unique<JsonRows>(headings, out);
}

}  // namespace zelk::tool
