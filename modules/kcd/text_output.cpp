#include "kcd/text_output.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include "base/encoding.hpp"
#include "common/records.hpp"

namespace zelk::modules::kcd {
namespace {

constexpr bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Number of bytes of the first character of a text in UTF-8 if XML forbids it, else 0.
std::size_t forbidden_size(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x20) return is_space(text[0]) ? 0 : 1;
  const bool is_noncharacter = text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
  return is_noncharacter ? 3 : 0;
}

/// Escapes the characters of the markup, and white space that readers would alter or drop: tabs and
/// carriage returns, line feeds in attributes, and all of a blank text.
void append_escaped(std::string& out, char c, bool is_kept_space) {
  constexpr std::pair<char, const char*> kEntities[] = {
      {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
  for (const auto& [character, entity] : kEntities) {
    if (c == character) {
      out += entity;
      return;
    }
  }
  out += is_space(c) && !is_kept_space ? "&#" + std::to_string(c) + ";" : std::string(1, c);
}

std::string escaped(std::string_view text, bool is_attribute, LeftOut& left_out) {
  const bool is_blank = std::all_of(text.begin(), text.end(), is_space);
  std::string out;
  while (!text.empty()) {
    const std::size_t forbidden = forbidden_size(text);
    if (forbidden > 0) {
      left_out.add("character", " that XML forbids");
    } else {
      const bool is_kept = text[0] == ' ' || (text[0] == '\n' && !is_attribute);
      append_escaped(out, text[0], is_kept && !is_blank);
    }
    text.remove_prefix(std::max<std::size_t>(forbidden, 1));
  }
  return out;
}

/// UTF-8 when all texts are that.
class EncodingTest : public pugi::xml_tree_walker {
 public:
  bool for_each(pugi::xml_node& node) override {
    const auto take = [this](const char* text) {
      if (!is_utf8(text)) encoding_ = Encoding::kWindows1252;
    };
    take(node.value());
    for (const pugi::xml_attribute& attribute : node.attributes()) take(attribute.value());
    return encoding_ == Encoding::kUtf8;
  }
  Encoding encoding() const { return encoding_; }

 private:
  Encoding encoding_ = Encoding::kUtf8;
};

/// Replaces all texts by escaped UTF-8.
class Escaping : public pugi::xml_tree_walker {
 public:
  Escaping(Encoding encoding, LeftOut& left_out) : encoding_(encoding), left_out_(left_out) {}

  bool for_each(pugi::xml_node& node) override {
    if (node.type() == pugi::node_pcdata) put(node, false);
    for (pugi::xml_attribute attribute : node.attributes()) put(attribute, true);
    return true;
  }

 private:
  template <typename Holder>
  void put(Holder& holder, bool is_attribute) {
    const std::string text = escaped(to_utf8(holder.value(), encoding_), is_attribute, left_out_);
    if (!holder.set_value(text.c_str())) throw std::bad_alloc();
  }

  Encoding encoding_;
  LeftOut& left_out_;
};

struct StringWriter : pugi::xml_writer {
  void write(const void* data, std::size_t size) override {
    content.append(static_cast<const char*>(data), size);
  }
  std::string content;
};

}  // namespace

// Without memory the XML library may also add an element or attribute that has no name.

pugi::xml_node append_child(pugi::xml_node parent, const char* tag) {
  pugi::xml_node child = parent.append_child(pugi::node_element);
  if (!child.set_name(tag)) throw std::bad_alloc();
  return child;
}

void append_attribute(pugi::xml_node element, const char* attribute, std::string_view text) {
  pugi::xml_attribute added = element.append_attribute("");
  if (!added.set_name(attribute) || !added.set_value(std::string(text).c_str())) {
    throw std::bad_alloc();
  }
}

void append_text(pugi::xml_node parent, const char* tag, const char* text) {
  if (view(text).empty()) return;
  if (!append_child(parent, tag).append_child(pugi::node_pcdata).set_value(text)) {
    throw std::bad_alloc();
  }
}

std::string to_xml(pugi::xml_document& document, LeftOut& left_out) {
  EncodingTest test;
  document.traverse(test);
  Escaping escaping(test.encoding(), left_out);
  document.traverse(escaping);
  StringWriter writer;
  document.save(writer, "  ", pugi::format_indent | pugi::format_no_escapes, pugi::encoding_utf8);
  return std::move(writer.content);
}

}  // namespace zelk::modules::kcd
