// What a database can be called, and the name that it has by itself.

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

#include "base/attribute_text.hpp"
#include "base/characters.hpp"
#include "model/errors.hpp"
#include "model/inline_name.hpp"
#include "zelk/database.hpp"
#include "zelk/library.h"
#include "zelk/model.h"
#include "zelk/query.h"

namespace zelk {
namespace {

constexpr std::size_t kNameMax = 32;

/// The value of the network attribute for the name, else its default, which also stands in for a
/// null text; none when the attribute is not defined as a text of the network.
std::optional<std::string_view> own_name(const ZelkDatabase& database) {
  const attr_def* definition =
      zelk_get_attr_def_name(database.attr_defs, ZelkDatabaseNameAttribute);
  if (!definition || definition->object_type != ZELK_OBJ_NETWORK ||
      definition->value_type != ZELK_ATTR_STRING) {
    return std::nullopt;
  }
  const attr* value = find_attribute_value(database.attr_values, ZelkDatabaseNameAttribute);
  const auto own = value ? attribute_text(*value) : std::nullopt;
  return own ? *own : default_text(*definition).value_or("");
}

/// The name of a file without its folder or drive, in the notation of any system, and without
/// extension.
std::string_view file_stem(std::string_view path) {
  const bool has_drive = path.size() > 1 && path[1] == ':' && is_letter(path[0]) && path[0] != '_';
  if (has_drive) path.remove_prefix(2);
  const std::string_view name = path.substr(path.find_last_of("/\\") + 1);
  return name.substr(0, name.rfind('.'));
}

/// Makes a name of a database out of any text. What stands in front of the first letter or "_"
/// becomes "_", character by character; behind it, what is no letter, digit or "_" is dropped.
///
/// @param destination  takes at most `kNameMax` characters and the end
void clean_name(char* destination, std::string_view source) {
  std::size_t written = 0;
  bool has_begun = false;
  for (const char character : source) {
    if (written == kNameMax) break;
    const bool is_copied = is_letter(character) || (has_begun && is_digit(character));
    has_begun |= is_copied;
    if (is_copied) {
      destination[written++] = character;
    } else if (!has_begun) {
      destination[written++] = '_';
    }
  }
  destination[written] = '\0';
}

}  // namespace
}  // namespace zelk

char* ZelkDatabase::GetDefaultName() const {
  const auto own = zelk::own_name(*this);
  const std::string_view source = own ? *own : zelk::file_stem(path ? path : "");
  auto* const name = static_cast<char*>(zelk_malloc(zelk::kNameMax + 1));
  if (name) {
    zelk::clean_name(name, source);
  } else {
    zelk_note(ZELK_ERR_MEMORY, zelk::kNoLine, nullptr);
  }
  return name;
}

bool ZelkVerifyDatabaseName(const char* text) {
  const std::string_view name = text ? text : "";
  return !name.empty() && name.size() <= zelk::kNameMax && zelk::is_letter(name[0]) &&
         std::all_of(name.begin(), name.end(), zelk::is_name_character);
}

bool ZelkSplitQualifiedName(char* text, const char** db, const char** object) {
  if (db) *db = text;
  if (object) *object = nullptr;
  char* const colon = text ? std::strchr(text, ':') : nullptr;
  const bool is_qualified = colon && colon[1] == ':';
  if (!is_qualified || !db || !object) return is_qualified;
  *colon = '\0';
  *object = colon + 2;
  return true;
}
