/// \file
/// The elements of a file, checked and converted.

#ifndef ZELK_MODULES_KCD_ELEMENT_HPP
#define ZELK_MODULES_KCD_ELEMENT_HPP

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "kcd/left_out.hpp"
#include "kcd/source.hpp"

namespace zelk::modules::kcd {

/// The file that is read, and what the database cannot hold of it.
struct Reading {
  const Source& source;
  LeftOut& left_out;
};

/// The parts of an element that the importer reads. All others are counted as left out.
struct Shape {
  std::initializer_list<std::string_view> attributes = {};
  std::initializer_list<std::string_view> once = {};  ///< elements that come at most once
  std::initializer_list<std::string_view> many = {};  ///< elements that come any number of times
  /// Name and value of an attribute that says nothing with that value, its default.
  std::initializer_list<std::pair<std::string_view, std::string_view>> idle = {};
  bool has_text = false;
};

/// One element. Texts are in UTF-8 unless said otherwise. Every fault of the element is a Fault
/// that names it, its attribute, and the line.
class Element {
 public:
  Element(Reading& reading, const pugi::xml_node& node) : reading_(&reading), node_(node) {}

  [[noreturn]] void fail(const std::string& what) const;

  std::string_view tag() const { return node_.name(); }
  /// Counts the parts that are left out.
  /// @throws Fault for an attribute or element that comes too often
  void take(const Shape& shape) const;

  std::optional<std::string_view> find(const char* attribute) const;
  std::string_view text(const char* attribute) const;
  /// A name that a database file can hold.
  std::string object_name(const char* attribute) const;
  /// A whole number, in decimal or with "0x" in front in hexadecimal digits.
  ///
  /// @param missing  the value without the attribute; none: its absence is a Fault
  std::int64_t whole(const char* attribute, std::int64_t smallest, std::int64_t largest,
                     std::optional<std::int64_t> missing = std::nullopt) const;
  /// A finite number.
  double real(const char* attribute, double missing) const;
  /// All text directly inside, in the database's encoding.
  std::string content() const;
  /// A text of the file in the database's encoding.
  std::string stored(std::string_view text) const { return reading_->source.stored(text); }

  /// The first child of that name; its node is null when there is none.
  std::optional<Element> child(const char* tag) const;
  /// Calls `visit` with each child of that name, or with every child when it is null.
  template <typename Visit>
  void each(const char* tag, Visit visit) const {
    for (const pugi::xml_node& node : node_.children()) {
      if (node.type() != pugi::node_element) continue;
      const Element element(*reading_, node);
      if (!tag || element.tag() == tag) visit(element);
    }
  }

  const pugi::xml_node& node() const { return node_; }

 private:
  void take_attributes(const Shape& shape) const;
  void take_children(const Shape& shape) const;

  Reading* reading_;
  pugi::xml_node node_;
};

}  // namespace zelk::modules::kcd

#endif
