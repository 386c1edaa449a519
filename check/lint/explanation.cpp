#include "check/lint/rule.hpp"
#include "check/lint/words.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kLineLength = 80;

/// Breaks a text at blanks into lines.
void add_paragraph(std::string& text, std::string_view paragraph) {
  while (paragraph.size() > kLineLength) {
    const std::size_t blank = paragraph.rfind(' ', kLineLength);
    if (blank == std::string_view::npos) break;
    append(text, paragraph.substr(0, blank));
    append(text, "\n");
    paragraph.remove_prefix(blank + 1);
  }
  append(text, paragraph);
  append(text, "\n");
}

/// Indents each line.
void add_example(std::string& text, std::string_view example) {
  while (!example.empty()) {
    const std::size_t size = example.find('\n') + 1;
    text += join("    ", example.substr(0, size));
    example.remove_prefix(size);
  }
}

}  // namespace

std::string explanation_of(const Rule& rule) {
  std::string text = join(rule.name, " (", name_of(rule.severity), "): ");
  std::string paragraph = std::move(text);
  append(paragraph, rule.summary);
  append(paragraph, ".");
  text.clear();
  add_paragraph(text, paragraph);
  text += '\n';
  add_paragraph(text, rule.reason);
  text += "\nExample:\n\n";
  add_example(text, rule.example);
  text += '\n';
  add_paragraph(text, rule.advice);
  if (rule.parameter.name.empty()) return text;
  text += '\n';
  add_paragraph(text, join("Parameter \"", rule.parameter.name, "\", ", rule.parameter.value,
                           " unless set: ", rule.parameter.summary));
  return text;
}

}  // namespace zelk::check
