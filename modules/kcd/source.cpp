#include "kcd/source.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "common/file.hpp"
#include "common/records.hpp"

namespace zelk::modules::kcd {
namespace {

constexpr std::uint32_t kMaxCodePoint = 0x10FFFF;

/// The value of a digit; 16 for anything else.
std::uint32_t digit(std::uint32_t unit) {
  if (unit >= '0' && unit <= '9') return unit - '0';
  if (unit >= 'a' && unit <= 'f') return unit - 'a' + 10;
  return unit >= 'A' && unit <= 'F' ? unit - 'A' + 10 : 16;
}

/// What has no references between its beginning and its end.
struct Literal {
  std::string_view begin, end;
};
constexpr Literal kLiterals[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

/// Whether a tag is open. A value of an attribute may have what ends a tag elsewhere.
class OpenTag {
 public:
  explicit operator bool() const { return is_open_; }

  void take(std::uint32_t unit) {
    if (!is_open_) {
      is_open_ = unit == '<';
    } else if (quote_ != 0) {
      if (unit == quote_) quote_ = 0;
    } else if (unit == '"' || unit == '\'') {
      quote_ = unit;
    } else {
      is_open_ = unit != '>';
    }
  }

 private:
  bool is_open_ = false;
  std::uint32_t quote_ = 0;  // around the value
};

/// Finds the encoding that holds all texts, and texts that are broken.
class EncodingChoice : public pugi::xml_tree_walker {
 public:
  explicit EncodingChoice(const Source& source) : source_(source) {}

  bool for_each(pugi::xml_node& node) override {
    const pugi::xml_node element = node.type() == pugi::node_element ? node : node.parent();
    check_name(node.name(), element);
    take(node.value(), element);
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      check_name(attribute.name(), element);
      take(attribute.value(), element);
    }
    return true;
  }

  /// Texts in Windows-1252 must not all look like UTF-8, or they would be taken for that later.
  Encoding chosen() const {
    return all_windows_1252_ && is_distinct_from_utf8_ ? Encoding::kWindows1252 : Encoding::kUtf8;
  }

 private:
  /// Messages have names in them.
  void check_name(std::string_view name, const pugi::xml_node& element) const {
    if (!is_utf8(name)) throw Fault("a name is no UTF-8", source_.line(element));
  }

  void take(std::string_view text, const pugi::xml_node& element) {
    if (!is_utf8(text)) {
      const std::string owner = *element.name() ? std::string(" of ") + element.name() : "";
      throw Fault("a text" + owner + " is no UTF-8", source_.line(element));
    }
    if (!all_windows_1252_) return;
    const std::optional<std::string> bytes = from_utf8(text, Encoding::kWindows1252);
    all_windows_1252_ = bytes.has_value();
    is_distinct_from_utf8_ = is_distinct_from_utf8_ || (bytes && !is_utf8(*bytes));
  }

  const Source& source_;
  bool all_windows_1252_ = true;
  bool is_distinct_from_utf8_ = false;
};

}  // namespace

Source::Source(const char* path) : content_(read_file(path)) {
  parse();
  check_characters();
  check_references();
  check_top_level();
  choose_encoding();
}

std::string Source::stored(std::string_view text) const {
  // The constructor has tried every text.
  return from_utf8(text, encoding_).value_or(std::string());
}

std::size_t Source::unit_size() const {
  const bool is_16 =
      file_encoding_ == pugi::encoding_utf16_le || file_encoding_ == pugi::encoding_utf16_be;
  const bool is_32 =
      file_encoding_ == pugi::encoding_utf32_le || file_encoding_ == pugi::encoding_utf32_be;
  return is_32 ? 4 : is_16 ? 2 : 1;
}

std::uint32_t Source::unit(std::size_t index) const {
  const std::size_t size = unit_size();
  if (index >= content_.size() / size) return 0;
  const bool is_big_endian =
      file_encoding_ == pugi::encoding_utf16_be || file_encoding_ == pugi::encoding_utf32_be;
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t byte = index * size + (is_big_endian ? i : size - 1 - i);
    value = value << 8 | static_cast<unsigned char>(content_[byte]);
  }
  return value;
}

std::size_t Source::converted_size(std::uint32_t unit) const {
  if (file_encoding_ == pugi::encoding_utf8 || unit < 0x80) return 1;
  const bool is_surrogate = unit >= 0xD800 && unit <= 0xDFFF;
  if (unit < 0x800 || is_surrogate) return 2;
  return unit < 0x10000 ? 3 : 4;
}

std::int32_t Source::line_at(std::ptrdiff_t converted_offset) const {
  std::size_t index = 0;
  const std::size_t units = content_.size() / unit_size();
  for (std::ptrdiff_t offset = 0; offset < converted_offset && index < units; ++index) {
    offset += static_cast<std::ptrdiff_t>(converted_size(unit(index)));
  }
  return line_of_unit(index);
}

std::int32_t Source::line_of_unit(std::size_t index) const {
  std::int32_t line = 1;
  for (std::size_t i = 0; i < index; ++i) line += unit(i) == '\n' ? 1 : 0;
  return line;
}

void Source::parse() {
  const pugi::xml_parse_result result = document_.load_buffer(
      content_.data(), content_.size(), pugi::parse_default | pugi::parse_doctype);
  file_encoding_ = result.encoding;
  if (result) return;
  if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
  throw Fault(std::string("no well-formed XML: ") + result.description(), line_at(result.offset));
}

/// A NUL would cut off the rest of the document, or of a text.
void Source::check_characters() const {
  const std::size_t units = content_.size() / unit_size();
  for (std::size_t i = 0; i < units; ++i) {
    if (unit(i) == 0) throw Fault("no well-formed XML: a NUL character", line_of_unit(i));
  }
}

void Source::check_references() const {
  OpenTag tag;
  for (std::size_t i = 0; unit(i) != 0; ++i) {
    if (!tag) i = behind_literals(i);
    if (unit(i) == '&' && unit(i + 1) == '#') check_reference(i);
    tag.take(unit(i));
  }
}

/// Where the comments, CDATA sections and instructions end that begin there.
std::size_t Source::behind_literals(std::size_t index) const {
  const auto is_at = [this, &index](std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (unit(index + i) != static_cast<unsigned char>(text[i])) return false;
    }
    return true;
  };
  for (;;) {
    const auto* const found = std::ranges::find_if(
        kLiterals, [&](const Literal& literal) { return is_at(literal.begin); });
    if (found == std::end(kLiterals)) return index;
    index += found->begin.size();
    while (unit(index) != 0 && !is_at(found->end)) ++index;
    if (unit(index) != 0) index += found->end.size();
  }
}

void Source::check_reference(std::size_t index) const {
  const bool is_hexadecimal = unit(index + 2) == 'x';
  const std::uint32_t base = is_hexadecimal ? 16 : 10;
  std::size_t i = index + (is_hexadecimal ? 3 : 2);
  std::uint32_t value = 0;
  for (; digit(unit(i)) < base; ++i) {
    value = std::min(value * base + digit(unit(i)), kMaxCodePoint + 1);
  }
  if (unit(i) == ';' && value != 0 && value <= kMaxCodePoint) return;
  throw Fault("no well-formed XML: a reference to no character", line_of_unit(index));
}

void Source::check_top_level() const {
  for (const pugi::xml_node& node : document_.children()) {
    if (node.type() == pugi::node_doctype && std::strchr(node.value(), '[')) {
      throw Fault("a DOCTYPE with declarations, which are not taken");
    }
    if (node.type() == pugi::node_element && node != root()) {
      throw Fault(std::string("no well-formed XML: ") + node.name() + " is a second root element",
                  line(node));
    }
  }
}

void Source::choose_encoding() {
  EncodingChoice choice(*this);
  document_.traverse(choice);
  encoding_ = choice.chosen();
}

}  // namespace zelk::modules::kcd
