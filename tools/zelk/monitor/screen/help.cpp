#include "monitor/screen/help.hpp"

#include <array>

namespace zelk::tool {

namespace {

struct HelpEntry {
  const char* keys;
  const char* meaning;
};

constexpr std::array kEntries = {
    HelpEntry{"up down PgUp PgDn Home End", "choose a row or signal; also j, k and the mouse"},
    HelpEntry{"Enter, left, right", "expand a row: its signals, values and texts"},
    HelpEntry{"e", "expand all rows, or none"},
    HelpEntry{"/", "filter as you type: words in names, identifiers, signals; * and ?"},
    HelpEntry{"Esc", "leave a prompt; show all rows again"},
    HelpEntry{"s, S", "sort by the next column; in reverse"},
    HelpEntry{"u", "hide unknown identifiers, or show them"},
    HelpEntry{"m", "missing messages only, or all"},
    HelpEntry{"c", "draw the curve of the chosen signal, or remove it"},
    HelpEntry{"+ -", "more or less of the time in the curve"},
    HelpEntry{"space", "freeze the display; reception and recording go on"},
    HelpEntry{"r", "record all frames to a file, or stop that"},
    HelpEntry{"Ctrl-L", "draw the screen anew"},
    HelpEntry{"?", "this help"},
    HelpEntry{"q", "quit"},
    HelpEntry{"", ""},
    HelpEntry{"MISSING !", "a cyclic message is more than three cycles late"},
    HelpEntry{"(unknown)", "no database knows the identifier"},
    HelpEntry{"cycle, +-", "mean of the last times between frames and their deviation, in ms"},
    HelpEntry{"nominal", "the cycle time that the database states, in ms"},
    HelpEntry{"age", "seconds since the last frame (m: minutes, h: hours)"},
};

}  // namespace

std::vector<ScreenLine> help_lines(std::size_t columns, const CharacterSet& characters) {
  const std::size_t key_columns = columns < 60 ? columns / 3 : 27;
  std::vector<ScreenLine> lines;
  for (const HelpEntry& entry : kEntries) {
    LineWriter out(lines.emplace_back(), columns, characters);
    out.add(" ");
    out.add_left(entry.keys, key_columns, Role::kKey);
    out.add(" ");
    out.add(entry.meaning);
  }
  return lines;
}

}  // namespace zelk::tool
