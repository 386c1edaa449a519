#include "logs/columns/arrow_schema.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "logs/columns/exported.hpp"
#include "logs/columns/kernels.hpp"

namespace zelk::logs {

namespace {

struct SchemaTexts {
  std::string name;
  std::string metadata;
};
using ExportedSchema = Exported<ArrowSchema, SchemaTexts>;

void append_counted(std::string& metadata, std::string_view text) {
  const auto size = static_cast<std::int32_t>(text.size());
  metadata.append(reinterpret_cast<const char*>(&size), sizeof size);
  metadata.append(text);
}

/// One key and its value: the number of pairs, then each text behind its size, all numbers in 32
/// bits and the byte order of the machine.
std::string unit_metadata(const std::string& unit) {
  const std::int32_t pairs = 1;
  std::string metadata(reinterpret_cast<const char*>(&pairs), sizeof pairs);
  append_counted(metadata, "unit");
  append_counted(metadata, unit);
  return metadata;
}

void export_type(std::unique_ptr<ExportedSchema> owner, const char* format, std::int64_t flags,
                 ArrowSchema& out) {
  out = {};
  out.format = format;
  out.name = owner->content.name.c_str();
  if (!owner->content.metadata.empty()) out.metadata = owner->content.metadata.data();
  out.flags = flags;
  ExportedSchema::give(std::move(owner), out);
}

void export_column(const ZelkColumn& column, ArrowSchema& out) {
  auto owner = std::make_unique<ExportedSchema>();
  owner->content.name = column.name;
  if (!column.unit.empty()) owner->content.metadata = unit_metadata(column.unit);
  if (column.type == ZelkColumnType::kDictionary)
    export_type(std::make_unique<ExportedSchema>(), "u", 0, owner->dictionary);
  export_type(std::move(owner), format_of(column.type), ARROW_FLAG_NULLABLE, out);
}

}  // namespace

void export_schema(const std::vector<ZelkColumn>& columns, ArrowSchema& out) {
  auto owner = std::make_unique<ExportedSchema>();
  owner->add_children(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) export_column(columns[i], owner->children[i]);
  export_type(std::move(owner), "+s", 0, out);
}

}  // namespace zelk::logs
