/// \file
/// Pages and pictures made of templates.

#ifndef ZELK_TOOL_PAGE_PAGE_HPP
#define ZELK_TOOL_PAGE_PAGE_HPP

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace zelk::tool {

/// Templates that others include as {{>name}}, by their names.
using PageParts = std::map<std::string, std::string_view>;

/// Fills a Mustache template, of HTML or XML.
///
/// A {{value}} is escaped for texts and for attributes in quotes. Whatever neither HTML nor XML can
/// contain becomes visible: control characters as their symbols (U+2400 and on), and what is no
/// UTF-8 as U+FFFD. A {{{value}}} stands as it is: it is for what comes from `render` or
/// `script_json` itself. Numbers are spelled as in JSON; `null`, `false` and empty lists make
/// a section empty.
///
/// @throws std::logic_error when the template is not well-formed
std::string render(std::string_view page_template, const nlohmann::json& data,
                   const PageParts& parts = {});

/// A template for `render` that is parsed once and filled often.
class PageTemplate {
 public:
  /// @throws std::logic_error when the template is not well-formed
  explicit PageTemplate(std::string_view page_template, const PageParts& parts = {});
  PageTemplate(const PageTemplate&) = delete;
  PageTemplate& operator=(const PageTemplate&) = delete;
  ~PageTemplate();

  std::string fill(const nlohmann::json& data) const;

 private:
  struct Parsed;
  std::unique_ptr<Parsed> parsed_;
};

/// A text as `render` spells it.
std::string escaped_for_page(std::string_view text);

/// Data as JSON for the inside of a <script> element, which no text in it can end.
std::string script_json(const nlohmann::json& data);

}  // namespace zelk::tool

#endif
