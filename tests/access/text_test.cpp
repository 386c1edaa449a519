#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

#include "access/frames.hpp"
#include "support/system.hpp"

namespace {

struct Text {
  int result;
  std::string text;  ///< "#" where nothing was put
};

/// The text in a buffer of `size` bytes that ends where its memory does.
Text text_of(Manager& manager, const Frame& frame, const sigblk& signal, std::size_t size,
             int text_format, const char* format = nullptr) {
  const msgblk message = {};
  std::vector<char> buffer(size, '#');
  const int result = manager.GetSignalValue(*frame.data(), signal, message, buffer.data(),
                                            static_cast<unsigned long>(size),
                                            static_cast<ZelkSigvalueFormat>(text_format), format);
  const auto end = std::find(buffer.begin(), buffer.end(), '\0');
  const bool is_untouched = end == buffer.end();
  return {result, is_untouched ? "#" : std::string(buffer.begin(), end)};
}

TEST(ValueTexts, AreExactlyAsLongAsTheirBuffersMayBe) {
  const Frame ones(13, 0xFF);
  const Frame counting = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD,
                          0xEF, 0x10, 0x32, 0x54, 0x76, 0x98};
  const sigblk speed = scaled(make_signal(0, 16), 0.5, 0.25, 0.0, "km/h");
  const struct {
    const Frame& frame;
    sigblk signal;
    int format;
    int result;
    std::string text;
    std::size_t size;  ///< the least that is enough
  } cases[] = {
      {ones, make_signal(0, 8, kSigned), 0, 0, "-1", 3},
      {ones, make_signal(0, 32), 0, 0, "-1", 3},  // "%d" of all 32 bits
      {counting, make_signal(0, 40), 0, 3, "1732584193", 11},
      {ones, make_signal(0, 0, kSigned), 0, 0, "0", 2},
      {counting, make_signal(7, 32, kMotorola), 1, 0, "1234567", 8},
      {ones, make_signal(3, 9), 2, 0, "  1 255", 8},
      {ones, make_signal(0, 0), 2, 0, "", 1},
      {counting, make_signal(4, 12), 3, 0, "02 30", 6},
      {ones, make_signal(7, 89), 3, 0, "01 FF FF FF FF FF FF FF FF FF FF FF", 36},
      {counting, make_signal(0, 88, kMotorola | kSigned), 3, 0, "91 A2 B3 C4 D5 E6 F7 88 19 2A 3B",
       33},
      {counting, speed, 4, 0, "4480.75", 8},
      {ones, scaled(make_signal(0, 8, kSigned), 0.25, 0.0), 4, 0, "-0.25", 6},
      {ones, scaled(make_signal(0, 8), 1.0, 0.0, 10.0), 4, 4, "255", 4},
      {ones, scaled(make_signal(0, 33, kSigned), 1.0, 0.0, 10.0), 4, 3, "4.29497e+09", 12},
      {ones, scaled(make_signal(0, 8), 1e-9, 0.0), 4, 0, "2.55e-07", 9},
      {counting, speed, 5, 0, "4480.75 km/h", 13},
      {ones, scaled(make_signal(0, 8), 1.0, 0.0, 10.0, "%"), 5, 4, "255 %", 6},
      {ones, make_signal(5, 89), 8, 0, std::string(89, '1'), 90},
      {counting, make_signal(12, 7, kMotorola), 8, 0, "0001101", 8},
  };
  Manager manager;
  for (const auto& c : cases) {
    const Text whole = text_of(manager, c.frame, c.signal, c.size, c.format);
    EXPECT_EQ(whole.text, c.text) << c.format << ", " << c.signal.length;
    EXPECT_EQ(whole.result, c.result) << c.text;
    for (const std::size_t size : {c.size - 1, std::size_t{0}}) {
      const Text none = text_of(manager, c.frame, c.signal, size, c.format);
      EXPECT_EQ(none.result, 6) << c.text;
      EXPECT_EQ(none.text, "#") << c.text;
    }
  }
}

TEST(ValueTexts, WhatRefusesFirst) {
  Message message;
  sigblk& multiplexor = message.add(make_signal(0, 8, kMultiplexor));
  const struct {
    unsigned length;
    int format;
    std::size_t size;
    bool is_present;
    int result;
    std::string text;
  } cases[] = {
      {97, 9, 0, false, 3, "#"},   {97, 7, 9, true, 3, "#"},
      {65535, 0, 9, true, 3, "#"}, {96, 7, 9, true, 1, "#"},
      {90, 0, 9, true, 1, "#"},    {90, 3, 99, true, 1, "#"},
      {90, 8, 99, true, 1, "#"},   {8, 9, 9, true, 1, "#"},
      {8, 9, 0, false, 1, "#"},    {8, -1, 9, true, 1, "#"},
      {8, 6, 9, false, 1, "#"},    {33, 0, 1, false, 6, "#"},
      {33, 0, 9, false, 3, "0"},   {33, 1, 9, false, 3, "0"},
      {33, 4, 9, false, 3, "100"}, {8, 4, 3, false, 6, "#"},
      {8, 4, 9, false, 4, "100"},  {8, 5, 9, false, 4, "100 "},
      {8, 0, 9, false, 5, "0"},    {8, 2, 9, false, 5, "  0"},
      {8, 3, 9, false, 5, "00"},   {8, 7, 0, false, 5, "#"},
      {8, 7, 9, true, 0, "#"},     {8, 8, 9, false, 5, "00000000"},
      {8, 8, 8, false, 6, "#"},    {89, 3, 36, false, 5, "00 00 00 00 00 00 00 00 00 00 00 00"},
  };
  Manager manager;
  for (const auto& c : cases) {
    sigblk& signal = message.add(scaled(make_signal(8, c.length), 1.0, 100.0, 10.0));
    message.select(signal, multiplexor, c.is_present ? 0 : 1, c.is_present ? 0 : 1);
    const Text text = text_of(manager, Frame(13), signal, c.size, c.format);
    EXPECT_EQ(text.result, c.result) << c.length << ", " << c.format << ", " << c.size;
    EXPECT_EQ(text.text, c.text) << c.length << ", " << c.format << ", " << c.size;
  }
  const sigblk signal = make_signal(0, 8);
  const Frame frame(1);
  EXPECT_EQ(
      manager.GetSignalValue(frame[0], signal, message.record, nullptr, 0, ZelkFormatNone, nullptr),
      0);
}

TEST(ValueTexts, InFormatsOfTheCaller) {
  Manager manager;
  const Frame frame = {0xC8, 0xFF, 0x34, 0x12};
  const sigblk signal = scaled(make_signal(0, 8, kSigned), 0.5, 0.0, 0.0, "V");
  const struct {
    int text_format;
    const char* format;
    const char* text;
  } cases[] = {{0, "%+05d|", "-0056|"}, {1, "0x%04X", "0x00C8"},
               {2, "%d", "200"},        {3, "%d", "C8"},
               {4, "%.3lf", "-28.000"}, {5, "%.1lf [%s]", "-28.0 [V]"},
               {8, "%d", "11001000"},   {0, "", ""},
               {0, "100%%", "100%"}};
  for (const auto& c : cases) {
    const std::size_t size = std::strlen(c.text) + 1;
    const Text text = text_of(manager, frame, signal, size + 1, c.text_format, c.format);
    EXPECT_EQ(text.result, 0) << c.text;
    EXPECT_EQ(text.text, c.text);
    EXPECT_EQ(text_of(manager, frame, signal, size - 1, c.text_format, c.format).result, 6)
        << c.text;
  }
  const Text wide = text_of(manager, frame, signal, 5001, 0, "%5000d");
  EXPECT_EQ(wide.result, 0);
  EXPECT_EQ(wide.text, std::string(4997, ' ') + "-56");
  EXPECT_EQ(text_of(manager, frame, signal, 5000, 0, "%5000d").result, 6);
}

TEST(ValueTexts, HaveADecimalPointInEveryLocale) {
  if (!enter_decimal_comma()) GTEST_SKIP() << "no locale with a decimal comma";
  Manager manager;
  const Frame frame = {25};
  const sigblk signal = scaled(make_signal(0, 8), 0.5, 0.0, 0.0, "V");
  EXPECT_EQ(text_of(manager, frame, signal, 9, 4).text, "12.5");
  EXPECT_EQ(text_of(manager, frame, signal, 9, 5).text, "12.5 V");
  EXPECT_EQ(text_of(manager, frame, signal, 9, 4, "%lg").text, "12,5");
  std::setlocale(LC_ALL, "C");
}

TEST(ValueTexts, OfValueDescriptions) {
  char on[] = "on", all[] = "all", later[] = "later", empty[] = "";
  val last = {0, empty, nullptr};
  val second = {1, later, &last};
  val minus = {-1, all, &second};
  val first = {1, on, &minus};
  val whole = {255, all, &first};
  const struct {
    Frame frame;
    sigblk signal;
    std::size_t size;
    int result;
    std::string text;
    std::uint32_t status;
  } cases[] = {
      {{1}, make_signal(0, 8), 3, 0, "on", 0},
      {{1}, make_signal(0, 8), 2, 6, "#", 0},
      {{0}, make_signal(0, 8), 1, 0, "", 0},
      {{2}, make_signal(0, 8), 9, 1, "#", 4},
      {{255}, make_signal(0, 8, kSigned), 9, 0, "all", 0},  // not -1
      {{255, 255, 255, 255}, make_signal(0, 32), 9, 0, "all", 0},
      {{1, 0, 0, 0, 9}, make_signal(0, 40), 9, 0, "on", 0},  // the low word
  };
  Manager manager;
  for (const auto& c : cases) {
    sigblk signal = c.signal;
    signal.values = &whole;
    const Text text = text_of(manager, c.frame, signal, c.size, 6);
    EXPECT_EQ(text.result, c.result) << c.text;
    EXPECT_EQ(text.text, c.text);
    EXPECT_EQ(manager.Status(), c.status) << c.text;
  }
}

}  // namespace
