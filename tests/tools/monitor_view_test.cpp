#include <gtest/gtest.h>

#include <deque>
#include <limits>
#include <string>
#include <vector>

#include "monitor/screen/view.hpp"
#include "tools/monitor_screens.hpp"
#include "zelk/records.h"

namespace {

using namespace zelk::tool;

constexpr std::int64_t kNow = 100'000 * kMs;

/// A screen on some rows, and a user.
struct Bench {
  explicit Bench(const CharacterSet& characters = kUtf8) : view(characters) {}

  /// A row with a frame half a second ago.
  RowState& add(std::uint32_t id, const std::string& name, std::vector<unsigned char> data = {}) {
    RowState& row = rows.emplace_back();
    row.id = id;
    row.message = name.empty() ? nullptr : &message;
    row.name = name;
    row.data = std::move(data);
    row.changed_at.resize(row.data.size(), kZelkNoTime);
    row.count = 1;
    row.last_time = kNow - 500 * kMs;
    return row;
  }

  std::vector<ScreenLine> lines(std::size_t columns = 80, std::size_t count = 10) {
    facts.source = "log";
    view.update(rows, facts);
    std::vector<ScreenLine> drawn = view.draw(columns, count);
    EXPECT_LE(drawn.size(), count);
    return drawn;
  }
  std::string text(std::size_t columns = 80, std::size_t count = 10) {
    return text_of(lines(columns, count));
  }
  std::string footer() { return text_of(lines().back()); }

  /// Names of the rows in sight, with "*" in front of the chosen one.
  std::string names() {
    std::string result;
    const std::vector<ScreenLine> drawn = lines(200, 40);
    for (const ScreenLine& line : drawn) {
      if (line.background != Role::kPlain || line.pieces.empty()) continue;
      const std::string whole = text_of(line);
      for (const RowState& row : rows) {
        const std::string name = row.name.empty() ? "(unknown)" : row.name;
        const std::string page = row.page.empty() ? "" : ' ' + row.page;
        if (whole.find(' ' + name + page + ' ') == std::string::npos) continue;
        result +=
            (result.empty() ? "" : " ") + std::string(line.is_selected ? "*" : "") + name + page;
        break;
      }
    }
    return result;
  }

  /// Characters are themselves, or: ^ v < > up and so on, \r Enter, \x1b Escape, \b Backspace.
  Request type(const std::string& keys) {
    Request request;
    for (const char c : keys) request = view.press(press_of(c));
    return request;
  }

  static KeyPress press_of(char c) {
    const std::string special = "^v<>{}[]\r\x1b\b";
    const Key keys[] = {Key::kUp,     Key::kDown,     Key::kLeft,     Key::kRight,
                        Key::kPageUp, Key::kPageDown, Key::kHome,     Key::kEnd,
                        Key::kEnter,  Key::kEscape,   Key::kBackspace};
    const std::size_t at = special.find(c);
    if (at != std::string::npos) return {keys[at]};
    return {Key::kCharacter, static_cast<unsigned char>(c)};
  }

  msgblk message = {};
  std::deque<RowState> rows;
  BusFacts facts{.now = kNow, .frame_count = 7, .frames_per_second = 1.6};
  ScreenView view;
};

/// A bus with something of everything.
void fill(Bench& bench) {
  RowState& engine = bench.add(0x100, "Engine", {0x12, 0x34, 0xFF});
  engine.changed_at = {kNow - 300 * kMs, kNow - 900 * kMs, kNow - 5000 * kMs};
  engine.cycle_ms = 10.04;
  engine.deviation_ms = 0.5;
  engine.nominal_ms = 10;
  engine.count = 12345;
  engine.signals = {{.name = "Speed",
                     .unit = "rpm",
                     .value = 5.5,
                     .spelled = "5.5",
                     .is_present = true,
                     .changed_at = kNow},
                    {.name = "Gear", .spelled = "2", .text = "Second", .is_present = true}};
  RowState& doors = bench.add(0x200, "Doors");
  doors.count = 0;
  doors.last_time = kZelkNoTime;
  doors.nominal_ms = 100;
  doors.is_missing = true;
  for (const char* page : {"Mode = 0", "Mode = 1, Sub = 3"})
    bench.add(0x300, "Paged", {7}).page = page;
  bench.add(ZELK_ID_EXTENDED | 0x100, "", {1, 2, 3, 4, 5, 6, 7, 8});
}

TEST(MonitorView, ShowsABusAtEverySize) {
  Bench bench;
  fill(bench);
  EXPECT_EQ(bench.text(80, 9),
            " log  2/s  7 frames  100.0 s                                           1 MISSING\n"
            "       ↑id name                    data               cycle    ±ms count   age\n"
            "▸      100 Engine                  1234FF             10.04   0.50 12345  0.50\n"
            "▸!     200 Doors                                    MISSING            0 never\n"
            "▸      300 Paged Mode = 0          07                                  1  0.50\n"
            "▸      300 Paged Mode = 1, Sub = 3 07                                  1  0.50\n"
            "▸ 00000100 (unknown)               0102030405060708                    1  0.50\n"
            "\n"
            " 5 of 5 by id                                                    ? help  q quit\n");
  const std::vector<ScreenLine> lines = bench.lines();
  EXPECT_EQ(with_role(lines[0], Role::kAlert), " 1 MISSING|");
  EXPECT_EQ(with_role(lines[2], Role::kFresh), "12|");
  EXPECT_EQ(with_role(lines[2], Role::kFading), "34|");
  EXPECT_EQ(with_role(lines[3], Role::kAlert), "!|Doors|MISSING|never|");
  EXPECT_EQ(with_role(lines[4], Role::kFaint), "▸|Mode = 0|");
  EXPECT_EQ(with_role(lines[6], Role::kUnknown), "00000100|(unknown)|");
  bench.facts.error_frame_count = 1;
  bench.facts.unlisted_frame_count = 2;
  bench.facts.has_ended = true;
  EXPECT_NE(text_of(bench.lines(110)[0]).find("  100.0 s  1 error frame  2 not listed  "),
            std::string::npos);
  EXPECT_EQ(bench.text(40, 10),
            " log  2/s  7 frames  10… 1 MISSING ENDED\n"
            "       ↑id name\n"
            "▸      100 Engine\n"
            "▸!     200 Doors\n"
            "▸      300 Paged Mode = 0\n"
            "▸      300 Paged Mode = 1, Sub = 3\n"
            "▸ 00000100 (unknown)\n"
            "\n"
            "\n"
            " 5 of 5 by id            ? help  q quit\n");
  EXPECT_EQ(bench.text(20, 5),
            " lo… 1 MISSING ENDED\n"
            "       ↑id name\n"
            "▸      100 Engine\n"
            "▸!     200 Doors\n"
            " 5…  ? help  q quit\n");
  bench.type("ec");
  for (std::size_t columns = 0; columns < 40; ++columns)
    for (std::size_t count = 0; count < 20; ++count)
      for (const ScreenLine& line : bench.lines(columns, count))
        EXPECT_LE(fitted(text_of(line), 999, kUtf8).columns, columns);
}

TEST(MonitorView, DrawsDetailsAndACurve) {
  Bench bench(kAscii);
  fill(bench);
  bench.lines();
  bench.type("c");
  EXPECT_EQ(bench.text(60, 15),
            " log  2/s  7 frames  100.0 s                       1 MISSING\n"
            "       ^id name               data               cycle   age\n"
            "-      100 Engine             1234FF             10.04  0.50\n"
            "    3 bytes, 12345 frames, every 10.04 +- 0.50 ms, nominal ~\n"
            "  * Speed               5.5 rpm\n"
            "    Gear                  2 \"Second\"\n"
            "+!     200 Doors                               MISSING never\n"
            "+      300 Paged Mode = 0     07                        0.50\n"
            "+      300 Paged Mode = 1, S~ 07                        0.50\n"
            " Engine.Speed = 5.5 rpm  last 30 s\n"
            "\n"
            "      5.5                                                 ..\n"
            "\n"
            "\n"
            " 5 of 5 by id                                ? help  q quit\n");
  const struct {
    double value;
    const char* label;  // of the greatest value, or of the least one; no exponent is cut
  } cases[] = {{1'234'567, "\n1.235e+06  "},
               {-1.2345e300, "\n-1.2e+300  "},
               {std::numeric_limits<double>::quiet_NaN(), "\n-1.2e+300  "},
               {0, "\n1.235e+06  "}};
  for (const auto& c : cases) {
    bench.rows[0].last_time = bench.facts.now += 1000 * kMs;
    bench.rows[0].signals[0].value = c.value;
    EXPECT_NE(bench.text(60, 15).find(c.label), std::string::npos) << bench.text(60, 15);
  }
  const auto last_seconds = [&](const char* keys) {
    bench.type(keys);
    const std::string text = bench.text(60, 15);
    const std::size_t at = text.find("last ");
    return at == std::string::npos ? "none" : text.substr(at, text.find('\n', at) - at);
  };
  EXPECT_EQ(last_seconds("+++++++"), "last 1 s");
  EXPECT_EQ(last_seconds("vc"), "last 1 s");  // another signal, the same time
  EXPECT_EQ(last_seconds("c"), "none");
  EXPECT_EQ(last_seconds("-]c"), "none");
  EXPECT_EQ(bench.footer(), " this row has no signals to draw");
  EXPECT_EQ(last_seconds("["), "none");
  EXPECT_EQ(last_seconds("c"), "last 5 s");
  EXPECT_EQ(bench.view.draw(60, 13).size(), 13u);  // too few lines for a curve
}

TEST(MonitorView, SortsByEachColumn) {
  Bench bench;
  const struct {
    const char* name;
    std::uint32_t id;
    const char* channel;
    std::vector<unsigned char> data;
    double cycle, deviation, nominal;
    std::uint64_t count;
    std::int64_t last;
  } rows[] = {
      {"b", ZELK_ID_EXTENDED | 1, "can1", {2}, 10, 0, 10, 5, 50},
      {"A", 0x200, "can0", {1, 9}, 10, 0.5, 0, 5, 70},
      {"c", 0x100, "", {}, 0, 0, 100, 0, kZelkNoTime},
      {"a", 0x200, "can1", {1}, 2, 0.5, 10, 30, 50},
  };
  for (const auto& r : rows) {
    RowState& row = bench.add(r.id, r.name, r.data);
    row.channel = r.channel;
    row.cycle_ms = r.cycle;
    row.deviation_ms = r.deviation;
    row.nominal_ms = r.nominal;
    row.count = r.count;
    row.last_time = r.last;
  }
  const struct {
    const char* heading;
    const char* order;     // equal ones as they came
    const char* reversed;  // those that have nothing stay behind
  } cases[] = {
      {"↑id", "*c A a b", "*b A a c"},      {"name↑", "*A a b c", "*c b A a"},
      {"data↑", "*a A b c", "*b A a c"},    {"↑cycle", "*a b A c", "*b A a c"},
      {"↑±ms", "*b A a c", "*A a b c"},     {"↑nominal", "*b a c A", "*c b a A"},
      {"↑count", "*c b A a", "*a b A c"},   {"↑age", "*A b a c", "*b a A c"},
      {"channel↑", "*A b a c", "*b a A c"}, {"↑id", "*c A a b", "*b A a c"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(bench.names(), c.order) << c.heading;
    EXPECT_NE(text_of(bench.lines(88)[1]).find(c.heading), std::string::npos)
        << text_of(bench.lines(88)[1]);
    bench.type("S");
    EXPECT_EQ(bench.names(), c.reversed) << c.heading;
    bench.type("s");
  }
  // The choice stays with its row; Home leaves it with the place.
  bench.names();
  bench.type("Sv");
  EXPECT_EQ(bench.names(), "c b A *a");
  bench.type("s");
  EXPECT_EQ(bench.names(), "*a A b c");
  bench.type("[s");
  EXPECT_EQ(bench.names(), "*a b A c");
}

TEST(MonitorView, Filters) {
  Bench bench;
  fill(bench);
  bench.rows[2].channel = "can7";
  const struct {
    const char* keys;
    const char* names;
  } cases[] = {
      {"/eNG", "*Engine"},
      {"/gear\r", "*Engine"},
      {"/PAGED sub\r", "*Paged Mode = 1, Sub = 3"},
      {"/  sub   paged ", "*Paged Mode = 1, Sub = 3"},
      {"/0x100\r", "*Engine"},
      {"/0x*100\r", "*Engine (unknown)"},
      {"/0x?00\r", "*Engine Doors Paged Mode = 0 Paged Mode = 1, Sub = 3 (unknown)"},
      {"/(unk\r", "*(unknown)"},
      {"/can7\r", "*Paged Mode = 0"},
      {"/nothing\r", ""},
      {"/doors\x1b", "*Engine Doors Paged Mode = 0 Paged Mode = 1, Sub = 3 (unknown)"},
      {"/doors\r/x\b\b\b\b\b\b", "*Engine Doors Paged Mode = 0 Paged Mode = 1, Sub = 3 (unknown)"},
      {"/doors\r/x\b\b\b\b\b\b\b", "*Doors"},
      {"/doors\r/eng\x1b", "*Doors"},
      {"/doors\r/\x15"
       "eng\r",
       "*Engine"},
      {"/doors\r \x1b", "*Engine Doors Paged Mode = 0 Paged Mode = 1, Sub = 3 (unknown)"},
      {"/s m\x1b", "*Engine Doors Paged Mode = 0 Paged Mode = 1, Sub = 3 (unknown)"},
      {"m", "*Doors"},
      {"mu/p", ""},
      {"u", "*Engine Doors Paged Mode = 0 Paged Mode = 1, Sub = 3"},
  };
  for (const auto& c : cases) {
    bench.type("\x1b\x1b");
    bench.type(c.keys);
    EXPECT_EQ(bench.names(), c.names) << c.keys;
  }
}

// A row that was expected knows its interface, page and signals from its first frame on.
TEST(MonitorView, TakesWhatTheFirstFrameBrings) {
  Bench bench;
  for (const char* name : {"One", "Two"}) {
    RowState& row = bench.add(1, name);
    row.count = 0;
    row.last_time = kZelkNoTime;
  }
  bench.names();
  bench.type("/first\r");
  EXPECT_EQ(bench.names(), "");
  for (RowState& row : bench.rows) {
    row.count = 1;
    row.channel = "can" + row.name;
    row.signals.push_back({.name = "First"});
  }
  EXPECT_EQ(bench.names(), "*One Two");
  EXPECT_NE(bench.text().find("canTwo"), std::string::npos);
}

TEST(MonitorView, KeepsFrozenRows) {
  Bench bench;
  fill(bench);
  bench.lines(80, 20);
  bench.type("c ");
  const auto below_header = [&] {
    const std::string text = bench.text(80, 20);
    return text.substr(text.find('\n'));
  };
  const std::string frozen = below_header();
  RowState& engine = bench.rows[0];
  engine.data = {0, 0};
  engine.signals[0].value = 77;
  engine.signals[0].spelled = "77";
  engine.last_time = bench.facts.now += 5000 * kMs;
  bench.add(0x101, "Late").is_missing = true;
  EXPECT_EQ(below_header(), frozen);
  EXPECT_NE(text_of(bench.lines()[0]).find(" 1 MISSING FROZEN"), std::string::npos);
  bench.type(" c");  // thawed, and at once another curve
  EXPECT_NE(below_header().find("Late"), std::string::npos);
  bench.type("c");
  EXPECT_NE(below_header().find("Engine.Speed = 77 rpm"), std::string::npos);
}

TEST(MonitorView, AsksTheProgram) {
  using Kind = Request::Kind;
  const struct {
    const char* keys;
    bool is_recording;
    Kind kind;
    const char* path;
    const char* footer;
  } cases[] = {
      {"q", false, Kind::kQuit, "", " 6 of"},
      {"?q", false, Kind::kNone, "", " 6 of"},
      {"/q", false, Kind::kNone, "", " filter: q_"},
      {"rq.log", false, Kind::kNone, "", " record to: q.log_"},
      {"ra b/q\b?.log\r", false, Kind::kRecord, "a b/?.log", " 6 of"},
      {"r\r", false, Kind::kNone, "", " 6 of"},
      {"ra\x1b", false, Kind::kNone, "", " 6 of"},
      {"ra\b\b\r", false, Kind::kNone, "", " 6 of"},
      {"/z\rry\r", false, Kind::kRecord, "y", " 0 of 6 by id, filter z "},
      {"ry\r/", false, Kind::kNone, "", " filter: _"},
      {"r", true, Kind::kStopRecording, "", " 6 of"},
  };
  for (const auto& c : cases) {
    Bench bench;
    fill(bench);
    bench.add(5, "Last");
    if (c.is_recording) bench.facts.recording = "x";
    bench.lines();
    const Request request = bench.type(c.keys);
    EXPECT_EQ(request.kind, c.kind) << c.keys;
    EXPECT_EQ(request.path, c.path) << c.keys;
    EXPECT_EQ(bench.footer().find(c.footer), 0u) << c.keys << bench.footer();
  }
}

TEST(MonitorView, KeepsTheEndOfAPromptInSight) {
  const struct {
    std::u32string typed;
    const char* footer;  // in 20 columns
  } cases[] = {
      {U"0123456789", " filter: 0123456789_"},
      {U"0123456789a", " filter: 123456789a_"},
      {U"0123456789水", " filter: 23456789水_"},
      {U"0123456\u009B", " filter: 56\\xC2\\x9B_"},
      {std::u32string(5000, U'é') + U"x", " filter: éééééééééx_"},
      {std::u32string(5000, U'水') + U"x", " filter: 水水水水x_"},
      {std::u32string(50, U'\x10FFFD') + U"xy", " filter: \\u10FFFDxy_"},
  };
  for (const auto& c : cases) {
    Bench bench;
    bench.type("/");
    for (const char32_t character : c.typed) bench.view.press({Key::kCharacter, character});
    EXPECT_EQ(text_of(bench.lines(20, 5).back()), c.footer);
  }
}

TEST(MonitorView, FollowsTheMouse) {
  Bench bench;
  fill(bench);
  bench.view.click(9, 1);  // nothing was drawn yet
  bench.lines();
  bench.view.click(0, 4);
  EXPECT_EQ(text_of(bench.lines()[5]), "    1 byte, 1 frame");
  bench.view.click(20, 4);  // once more, on its name
  EXPECT_TRUE(bench.lines()[4].is_selected);
  EXPECT_EQ(text_of(bench.lines()[5]).find("▸"), 0u);
  for (const std::size_t line : {0u, 7u, 8u, 9u, 10u, 999u}) bench.view.click(20, line);
  EXPECT_TRUE(bench.lines()[4].is_selected);
  bench.view.click(12, 1);
  EXPECT_EQ(bench.names(), "Doors Engine *Paged Mode = 0 Paged Mode = 1, Sub = 3 (unknown)");
  bench.lines();
  bench.view.click(12, 1);
  EXPECT_EQ(bench.names(), "Paged Mode = 1, Sub = 3 *Paged Mode = 0 Engine Doors (unknown)");
  bench.type("?");
  EXPECT_EQ(bench.text().find(" keys of zelk monitor"), 0u);
  bench.view.click(0, 0);
  EXPECT_EQ(bench.names(), "Paged Mode = 1, Sub = 3 *Paged Mode = 0 Engine Doors (unknown)");
}

TEST(MonitorView, SurvivesKeysInAnyOrder) {
  for (const char* keys :
       {"c", "<>\r^v{}[]", "e]\r]c", "c+++++++-------", "/\b\b/\r\r", "?]}}}^x", "mc\rm",
        " e c /x\r c  ", "e]/Doors\r\x1b<c", "j j kkkk\r\rc c", "uS s]Su{{c"}) {
    for (const bool is_drawn : {false, true}) {
      Bench bench;
      fill(bench);
      bench.lines(30, 16);
      for (const char* key = keys; *key != '\0'; ++key) {
        bench.type({*key});
        if (!is_drawn) continue;
        EXPECT_EQ(bench.lines(30, 16).size(), 16u) << keys;
      }
      // At most one line is chosen, whatever is in sight.
      int chosen = 0;
      for (const ScreenLine& line : bench.lines(30, 16)) chosen += line.is_selected;
      EXPECT_LE(chosen, 1) << keys;
    }
  }
}

}  // namespace
