// The module's two functions.

#include <nlohmann/json.hpp>
#include <string>

#include "common/encoding.hpp"
#include "common/file.hpp"
#include "common/records.hpp"
#include "document.hpp"
#include "form.hpp"
#include "input.hpp"
#include "output.hpp"

namespace zelk::modules::json {
namespace {

constexpr const char* kEncodingWords[] = {"utf-8", "windows-1252"};  // in the order of `Encoding`

// --- Import ---

/// @throws Fault unless the document is one of this form
void check_format(const nlohmann::json& document) {
  if (!document.is_object()) Path().fail("expected an object");
  const Path root;
  const auto check = [&](const char* key, const nlohmann::json& expected) {
    const auto found = document.find(key);
    if (found == document.end() || *found != expected) {
      Path(root, key).fail("expected " + expected.dump());
    }
  };
  check("format", kFormat);
  check("version", kVersion);
}

Encoding encoding_of(const nlohmann::json& document) {
  const auto found = document.find("encoding");
  if (found == document.end() || *found == kEncodingWords[0]) return Encoding::kUtf8;
  if (*found == kEncodingWords[1]) return Encoding::kWindows1252;
  const Path root;
  Path(root, "encoding").fail(R"(expected "utf-8" or "windows-1252")");
}

void read(const char* file, const Database& database) {
  const nlohmann::json document = parse(read_file(file));
  check_format(document);
  ObjectInput object(document, Path(), encoding_of(document));
  for (const char* const key : {"format", "version", "encoding"}) object.skip(key);
  Form(object).database(database);
  object.finish();
}

// --- Export ---

/// Calls `visit` for every text of a document.
template <typename Visit>
void for_each_text(nlohmann::ordered_json& value, const Visit& visit) {
  if (value.is_string()) {
    visit(value.get_ref<std::string&>());
  } else if (value.is_structured()) {
    for (auto& member : value) for_each_text(member, visit);
  }
}

/// The document goes from the characters of the database to UTF-8.
void encode(nlohmann::ordered_json& document) {
  bool is_all_utf8 = true;
  for_each_text(document, [&](const std::string& text) { is_all_utf8 &= is_utf8(text); });
  if (is_all_utf8) return;
  document["encoding"] = kEncodingWords[1];
  for_each_text(document, [](std::string& text) { text = to_utf8(text, Encoding::kWindows1252); });
}

void write(const char* file, const Database& database) {
  nlohmann::ordered_json document;
  ObjectOutput object(document, Path());
  document["format"] = kFormat;
  document["version"] = kVersion;
  document["encoding"] = kEncodingWords[0];
  Form(object).database(database);
  encode(document);
  write_new_file(file, document.dump(2) + "\n");
}

/// An output only reads; a form has one type of records for both directions.
template <typename Record>
Record* unlocked(const Record* list) {
  return const_cast<Record*>(list);
}

}  // namespace
}  // namespace zelk::modules::json

extern "C" ZELK_MODULE_EXPORT int zelk_import(const char* file, msgblk** messages, symblk** nodes,
                                              env_var_blk** env_vars, attr_def** attr_defs,
                                              attr** attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERTED_FORMAT, [=] {
    const zelk_conversion& more = conversion();
    json::read(file, {*messages, *nodes, *env_vars, *attr_defs, *attr_values, *more.bit_timings,
                      *more.categories, *more.filter, *more.comment, *more.user_data,
                      *more.signal_types, *more.value_tables});
  });
}

extern "C" ZELK_MODULE_EXPORT int zelk_export(const char* file, const msgblk* messages,
                                              const symblk* nodes, const env_var_blk* env_vars,
                                              const attr_def* attr_defs, const attr* attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERT, [=] {
    const zelk_conversion& more = conversion();
    msgblk* own_messages = json::unlocked(messages);
    symblk* own_nodes = json::unlocked(nodes);
    env_var_blk* own_env_vars = json::unlocked(env_vars);
    attr_def* own_attr_defs = json::unlocked(attr_defs);
    attr* own_attr_values = json::unlocked(attr_values);
    json::write(file, {own_messages, own_nodes, own_env_vars, own_attr_defs, own_attr_values,
                       *more.bit_timings, *more.categories, *more.filter, *more.comment,
                       *more.user_data, *more.signal_types, *more.value_tables});
  });
}
