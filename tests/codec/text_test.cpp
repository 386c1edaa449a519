#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

#include "codec/frames.hpp"
#include "manager/manager_test.hpp"
#include "support/system.hpp"

namespace {

/// A result and a text, "#" where nothing was put.
using Text = std::pair<int, std::string>;

/// The text in a buffer of `size` bytes that ends where its memory does.
Text text_of(Manager& manager, const Frame& frame, const sigblk& signal, std::size_t size,
             int text_format, const char* format = nullptr) {
  const msgblk message = {};
  std::vector<char> buffer(size, '#');
  const int result = manager.GetSignalValue(*frame.data(), signal, message, buffer.data(),
                                            static_cast<unsigned long>(size),
                                            static_cast<ZelkSigvalueFormat>(text_format), format);
  const auto end = std::find(buffer.begin(), buffer.end(), '\0');
  return {result, end == buffer.end() ? "#" : std::string(buffer.begin(), end)};
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
  } cases[] = {
      {ones, make_signal(0, 32), 0, 0, "-1"},  // "%d" of all 32 bits
      {counting, make_signal(0, 40), 0, 3, "1732584193"},
      {counting, make_signal(7, 32, kMotorola), 1, 0, "1234567"},
      {ones, make_signal(3, 9), 2, 0, "  1 255"},
      {ones, make_signal(0, 0), 2, 0, ""},
      {ones, make_signal(7, 89), 3, 0, "01 FF FF FF FF FF FF FF FF FF FF FF"},
      {counting, make_signal(0, 88, kMotorola | kSigned), 3, 0, "91 A2 B3 C4 D5 E6 F7 88 19 2A 3B"},
      {ones, scaled(make_signal(0, 8, kSigned), 0.25, 0.0), 4, 0, "-0.25"},
      {ones, scaled(make_signal(0, 33, kSigned), 1.0, 0.0, 10.0), 4, 3, "4.29497e+09"},
      {counting, speed, 5, 0, "4480.75 km/h"},
      {ones, scaled(make_signal(0, 8), 1.0, 0.0, 10.0, "%"), 5, 4, "255 %"},
      {ones, make_signal(5, 89), 8, 0, std::string(89, '1')},
  };
  Manager manager;
  for (const auto& c : cases) {
    const auto told = [&](std::size_t size) {
      return text_of(manager, c.frame, c.signal, size, c.format);
    };
    EXPECT_EQ(told(c.text.size() + 1), Text(c.result, c.text)) << c.format;
    for (const std::size_t size : {c.text.size(), std::size_t{0}}) {
      EXPECT_EQ(told(size), Text(6, "#")) << c.text;
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
      {97, 9, 0, false, 3, "#"},  {96, 7, 9, true, 1, "#"},
      {90, 3, 99, true, 1, "#"},  {8, 9, 0, false, 1, "#"},
      {8, -1, 9, true, 1, "#"},   {8, 6, 9, false, 1, "#"},
      {33, 0, 1, false, 6, "#"},  {33, 4, 9, false, 3, "100"},
      {8, 4, 3, false, 6, "#"},   {8, 4, 9, false, 4, "100"},
      {8, 2, 9, false, 5, "  0"}, {8, 7, 0, false, 5, "#"},
      {8, 7, 9, true, 0, "#"},    {89, 3, 36, false, 5, "00 00 00 00 00 00 00 00 00 00 00 00"},
  };
  Manager manager;
  for (const auto& c : cases) {
    sigblk& signal = message.add(scaled(make_signal(8, c.length), 1.0, 100.0, 10.0));
    message.select(signal, multiplexor, c.is_present ? 0 : 1, c.is_present ? 0 : 1);
    EXPECT_EQ(text_of(manager, Frame(13), signal, c.size, c.format), Text(c.result, c.text))
        << c.length << ", " << c.format << ", " << c.size;
  }
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
               {8, "%d", "11001000"},   {0, "", ""}};
  for (const auto& c : cases) {
    const std::size_t size = std::strlen(c.text) + 1;
    EXPECT_EQ(text_of(manager, frame, signal, size + 1, c.text_format, c.format), Text(0, c.text));
    EXPECT_EQ(text_of(manager, frame, signal, size - 1, c.text_format, c.format).first, 6);
  }
  const Text wide = text_of(manager, frame, signal, 5001, 0, "%5000d");
  EXPECT_EQ(wide.second, std::string(4997, ' ') + "-56");
}

TEST(ValueTexts, HaveADecimalPointInEveryLocale) {
  if (!enter_decimal_comma()) GTEST_SKIP() << "no locale with a decimal comma";
  Manager manager;
  const Frame frame = {25};
  const sigblk signal = scaled(make_signal(0, 8), 0.5, 0.0, 0.0, "V");
  EXPECT_EQ(text_of(manager, frame, signal, 9, 5).second, "12.5 V");
  EXPECT_EQ(text_of(manager, frame, signal, 9, 4, "%lg").second, "12,5");
  std::setlocale(LC_ALL, "C");
}

TEST(ValueTexts, OfValueDescriptions) {
  char on[] = "on", all[] = "all", later[] = "later", empty[] = "";
  val values[] = {{255, all, &values[1]},
                  {1, on, &values[2]},
                  {-1, all, &values[3]},
                  {1, later, &values[4]},
                  {0, empty, nullptr}};
  const struct {
    Frame frame;
    sigblk signal;
    std::size_t size;
    int result;
    std::string text;
    std::uint32_t status;
  } cases[] = {
      {{1}, make_signal(0, 8), 3, 0, "on", 0},
      {{0}, make_signal(0, 8), 1, 0, "", 0},
      {{2}, make_signal(0, 8), 9, 1, "#", 4},
      {{255}, make_signal(0, 8, kSigned), 9, 0, "all", 0},   // not -1
      {{1, 0, 0, 0, 9}, make_signal(0, 40), 9, 0, "on", 0},  // the low word
  };
  Manager manager;
  for (const auto& c : cases) {
    sigblk signal = c.signal;
    signal.values = values;
    EXPECT_EQ(text_of(manager, c.frame, signal, c.size, 6), Text(c.result, c.text));
    EXPECT_EQ(manager.Status(), c.status) << c.text;
  }
}

}  // namespace
