/// \file
/// The text of a document and its values.

#ifndef ZELK_MODULES_JSON_DOCUMENT_HPP
#define ZELK_MODULES_JSON_DOCUMENT_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zelk::modules::json {

struct Member;

/// One value of a document. The JSON library's own arrays and objects allocate in their
/// destructors, where a lack of memory ends the process; these only release.
struct Value {
  using Array = std::vector<Value>;
  using Object = std::vector<Member>;  ///< in the order of the file; no key comes twice

  template <typename Type>
  bool is() const {
    return std::holds_alternative<Type>(content);
  }
  /// The content as one of the alternatives; null when it is another one.
  template <typename Type>
  const Type* get_if() const {
    return std::get_if<Type>(&content);
  }
  bool is_text(std::string_view text) const;
  bool is_number(double number) const;
  /// The value of a key of an object; null when that has no such key.
  const Value* find(std::string_view key) const;

  /// Integers below 0 are `std::int64_t`, all others `std::uint64_t`.
  std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, Array,
               Object>
      content;
};

struct Member {
  std::string key;
  Value value;
};

/// Parses a document in UTF-8, with or without a byte order mark, in time and memory linear in its
/// size.
///
/// @throws Fault with the line: for what is not JSON, a number beyond the range of a double, a key
/// that an object has twice, more than 64 keys in one object, and arrays and objects more than 32
/// deep in each other
Value parse(std::string_view text);

}  // namespace zelk::modules::json

#endif
