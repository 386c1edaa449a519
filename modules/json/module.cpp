// The module's two functions.

#include <string>
#include <string_view>

#include "base/encoding.hpp"
#include "common/file.hpp"
#include "common/records.hpp"
#include "json/document.hpp"
#include "json/form.hpp"
#include "json/path.hpp"

namespace zelk::modules::json {
namespace {

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
  if (!found || found->is_text(kEncodings[0])) return Encoding::kUtf8;
  if (found->is_text(kEncodings[1])) return Encoding::kWindows1252;
  const Path root;
  Path(root, "encoding").fail(R"(expected "utf-8" or "windows-1252")");
}

void read(const char* file, const Database& database) {
  const Value document = parse(read_file(file));
  check_format(document);
  read_document(document, encoding_of(document), database);
}

// --- Export ---

/// A document is ASCII except for its texts, which stand in quotes: the whole is UTF-8 when each of
/// them is, and else is converted as a whole.
std::string encoded_document(const Database& database) {
  std::string text = document_of(database);
  if (is_utf8(text)) return text;
  const std::string_view assumed = kEncodings[0];
  text.replace(text.find(assumed), assumed.size(), kEncodings[1]);  // in the third line
  return to_utf8(text, Encoding::kWindows1252);
}

void write(const char* file, const Database& database) {
  write_new_file(file, encoded_document(database));
}

/// For `Database`, which serves both directions: an export changes nothing.
template <typename Record>
Record*& unlocked(const Record*& list) {
  return const_cast<Record*&>(list);
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
  return guarded(ZELK_ERR_CONVERT, [=]() mutable {
    const zelk_conversion& more = conversion();
    using json::unlocked;
    json::write(file, {unlocked(messages), unlocked(nodes), unlocked(env_vars), unlocked(attr_defs),
                       unlocked(attr_values), *more.bit_timings, *more.categories, *more.filter,
                       *more.comment, *more.user_data, *more.signal_types, *more.value_tables});
  });
}
