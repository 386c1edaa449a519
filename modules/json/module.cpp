// The module's two functions.

#include <string>
#include <string_view>

#include "base/encoding.hpp"
#include "common/file.hpp"
#include "common/records.hpp"
#include "json/document.hpp"
#include "json/form.hpp"
#include "json/input.hpp"
#include "json/output.hpp"

namespace zelk::modules::json {
namespace {

constexpr const char* kEncodingWords[] = {"utf-8", "windows-1252"};  // in the order of `Encoding`

// --- Import ---

/// @throws Fault unless the document is one of this form
void check_format(const Value& document) {
  if (!document.is<Value::Object>()) Path().fail("expected an object");
  const Path root;
  const Value* const format = document.find("format");
  if (!format || !format->is_text(kFormat)) {
    Path(root, "format").fail("expected \"" + std::string(kFormat) + "\"");
  }
  const Value* const version = document.find("version");
  if (!version || !version->is_number(kVersion)) {
    Path(root, "version").fail("expected " + std::to_string(kVersion));
  }
}

Encoding encoding_of(const Value& document) {
  const Value* const found = document.find("encoding");
  if (!found || found->is_text(kEncodingWords[0])) return Encoding::kUtf8;
  if (found->is_text(kEncodingWords[1])) return Encoding::kWindows1252;
  const Path root;
  Path(root, "encoding").fail(R"(expected "utf-8" or "windows-1252")");
}

void read(const char* file, const Database& database) {
  const Value document = parse(read_file(file));
  check_format(document);
  ObjectInput object(document, Path(), encoding_of(document));
  for (const char* const key : {"format", "version", "encoding"}) object.skip(key);
  Form(object).database(database);
  object.finish();
}

// --- Export ---

/// The document with the texts as the bytes that they are, taken for UTF-8.
std::string unencoded_document(const Database& database) {
  TextOutput out;
  ValueOutput(out, Path()).object([&database](ObjectOutput& object) {
    object.at("format").text(kFormat);
    object.at("version").whole(kVersion);
    object.at("encoding").text(kEncodingWords[0]);
    Form(object).database(database);
  });
  return out.text() + "\n";
}

/// All of a document but its texts is ASCII, and quotes stand around them: the whole is UTF-8 when
/// each of them is, and otherwise becomes it as a whole.
std::string document(const Database& database) {
  std::string text = unencoded_document(database);
  if (is_utf8(text)) return text;
  const std::string_view assumed = kEncodingWords[0];
  text.replace(text.find(assumed), assumed.size(), kEncodingWords[1]);  // in the third line
  return to_utf8(text, Encoding::kWindows1252);
}

void write(const char* file, const Database& database) { write_new_file(file, document(database)); }

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
