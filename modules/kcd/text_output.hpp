/// \file
/// Building a document of a database's texts, and its text as a file.

#ifndef ZELK_MODULES_KCD_TEXT_OUTPUT_HPP
#define ZELK_MODULES_KCD_TEXT_OUTPUT_HPP

#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "kcd/left_out.hpp"

namespace zelk::modules::kcd {

// Without memory the functions of the XML library do nothing; these throw std::bad_alloc.

/// A new element, last in `parent`.
pugi::xml_node append_child(pugi::xml_node parent, const char* tag);
/// Gives an element an attribute.
void append_attribute(pugi::xml_node element, const char* attribute, std::string_view text);
/// Adds an element with a text, unless that is null or empty.
void append_text(pugi::xml_node parent, const char* tag, const char* text);

/// The document in UTF-8, indented by two blanks. Its texts are UTF-8 when all of them are, else
/// Windows-1252; characters that XML forbids are left out.
///
/// @param document  changed: its texts become those of the file
std::string to_xml(pugi::xml_document& document, LeftOut& left_out);

}  // namespace zelk::modules::kcd

#endif
