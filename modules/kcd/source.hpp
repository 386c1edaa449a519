/// \file
/// A file in XML, as a tree whose elements know their line.

#ifndef ZELK_MODULES_KCD_SOURCE_HPP
#define ZELK_MODULES_KCD_SOURCE_HPP

#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "base/encoding.hpp"

namespace zelk::modules::kcd {

/// One document, with texts in UTF-8 whatever the file's encoding is.
class Source {
 public:
  /// @throws Fault when the file cannot be read, is no well-formed XML with a single root, has
  /// declarations in its DOCTYPE, or a text that is no UTF-8
  explicit Source(const char* path);

  pugi::xml_node root() const { return document_.document_element(); }
  /// From 1.
  std::int32_t line(const pugi::xml_node& element) const { return line_at(element.offset_debug()); }
  /// A text of the document in the encoding that a database gets from this file.
  std::string stored(std::string_view text) const;

 private:
  // The tree gives the offset of an element in the file converted to UTF-8; the file itself is a
  // sequence of units of 1, 2 or 4 bytes.
  std::size_t unit_size() const;
  /// A unit of the file; 0 behind its end.
  std::uint32_t unit(std::size_t index) const;
  /// Bytes that a unit becomes; half a surrogate pair counts for half of the pair's four.
  std::size_t converted_size(std::uint32_t unit) const;
  std::int32_t line_at(std::ptrdiff_t converted_offset) const;
  std::int32_t line_of_unit(std::size_t index) const;

  void parse();
  void check_characters() const;
  void check_references() const;
  std::size_t behind_literals(std::size_t index) const;
  void check_reference(std::size_t index) const;
  void check_top_level() const;
  void choose_encoding();

  std::string content_;
  pugi::xml_document document_;
  pugi::xml_encoding file_encoding_ = pugi::encoding_utf8;
  Encoding encoding_ = Encoding::kUtf8;
};

}  // namespace zelk::modules::kcd

#endif
