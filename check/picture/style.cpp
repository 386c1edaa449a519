#include "check/picture/style.hpp"

#include <array>

namespace zelk::check {

namespace {

// Paul Tol's scheme "light", made for filled cells with black text.
constexpr std::array<std::string_view, 8> kFills = {"#7ad", "#ed8", "#4b9", "#fab",
                                                    "#9df", "#e86", "#bc3", "#aa0"};

constexpr std::string_view kStyleSheet =
    R"svg(.zelk-frame text { font-family: "DejaVu Sans", Helvetica, Arial, sans-serif }
.zelk-frame .title { font-size: 20px; font-weight: bold }
.zelk-frame .heading { font-size: 13px; font-weight: bold }
.zelk-frame .body { font-size: 12px }
.zelk-frame .strong { font-size: 12px; font-weight: bold }
.zelk-frame .cell { font-size: 12px; fill: #000 }
.zelk-frame .mark { font-size: 8px; font-weight: bold; fill: #000 }
.zelk-frame .number { font-size: 9px; fill: #000; fill-opacity: 0.6 }
.zelk-frame .middle { text-anchor: middle }
.zelk-frame .end { text-anchor: end }
.zelk-frame .page { fill: #fff }
.zelk-frame .unused { fill: #f3f3f3; stroke: #ccc }
.zelk-frame .band { fill: #f3f3f3 }
.zelk-frame .edge { fill: none; stroke: #333; stroke-width: 1.5 }
.zelk-frame .tick { stroke: #000; stroke-opacity: 0.3 }
.zelk-frame .rule { stroke: #333 }
.zelk-frame .arrow { fill: #000; fill-opacity: 0.7 }
.zelk-frame .p1 { fill: url(#zelk-stripes) }
.zelk-frame .p2 { fill: url(#zelk-dots) }
.zelk-frame .p3 { fill: url(#zelk-lines) }
.zelk-frame .overlap { fill: url(#zelk-overlap) }
.zelk-frame .clash { fill: none; stroke: #c31; stroke-width: 3 }
.zelk-frame .warning { fill: #c31 }
@media (prefers-color-scheme: dark) {
.zelk-frame .title, .zelk-frame .heading, .zelk-frame .body, .zelk-frame .strong { fill: #eee }
.zelk-frame .free { fill: #fff }
.zelk-frame .page { fill: #1c1c1c }
.zelk-frame .unused { fill: #2a2a2a; stroke: #555 }
.zelk-frame .band { fill: #2a2a2a }
.zelk-frame .edge { stroke: #000 }
.zelk-frame .rule { stroke: #aaa }
.zelk-frame .warning { fill: #f75 }
}
</style>
<defs>
<pattern id="zelk-stripes" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
<rect width="2" height="6" fill="#000" fill-opacity="0.18"/></pattern>
<pattern id="zelk-dots" width="6" height="6" patternUnits="userSpaceOnUse">
<circle cx="3" cy="3" r="1.3" fill="#000" fill-opacity="0.25"/></pattern>
<pattern id="zelk-lines" width="5" height="5" patternUnits="userSpaceOnUse">
<rect width="5" height="1" fill="#000" fill-opacity="0.25"/></pattern>
<pattern id="zelk-overlap" width="8" height="8" patternUnits="userSpaceOnUse" patternTransform="rotate(-45)">
<rect width="8" height="8" fill="#fff"/><rect width="4" height="8" fill="#f6a592"/></pattern>
</defs>
)svg";

}  // namespace

void fill(Svg& svg, const Box& box, std::size_t number) {
  constexpr std::string_view kColors[] = {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7"};
  constexpr std::string_view kPatterns[] = {"", "p1", "p2", "p3"};
  svg.rectangle(box, kColors[(number - 1) % kFills.size()]);
  const std::string_view pattern = kPatterns[(number - 1) / kFills.size() % 4];
  if (!pattern.empty()) svg.rectangle(box, pattern);
}

std::string fill_rules(std::string_view selector) {
  std::string rules;
  for (std::size_t i = 0; i < kFills.size(); ++i) {
    rules += selector;
    rules += std::to_string(i) + " { fill: ";
    rules += kFills[i];
    rules += " }\n";
  }
  return rules;
}

std::string style_sheet() {
  return "<style>\n" + fill_rules(".zelk-frame .c") + std::string(kStyleSheet);
}

}  // namespace zelk::check
