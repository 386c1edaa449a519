#include "check/lint/unit_names.hpp"

#include <algorithm>
#include <array>

#include "base/encoding.hpp"

namespace zelk::check {

namespace {

struct Alias {
  std::string_view spelling;  ///< in small letters
  std::string_view unit;
};

/// Spellings that differ from their unit in more than case.
constexpr std::array kAliases = std::to_array<Alias>({
    {"kmh", "km/h"},
    {"kph", "km/h"},
    {"km/hr", "km/h"},
    {"km/hour", "km/h"},
    {"mi/h", "mph"},
    {"deg", "\u00B0"},
    {"degree", "\u00B0"},
    {"degrees", "\u00B0"},
    {"degc", "\u00B0c"},
    {"deg.c", "\u00B0c"},
    {"degreec", "\u00B0c"},
    {"degreesc", "\u00B0c"},
    {"celsius", "\u00B0c"},
    {"\u2103", "\u00B0c"},
    {"\u00BAc", "\u00B0c"},
    {"\u00BA", "\u00B0"},
    {"degf", "\u00B0f"},
    {"degreesf", "\u00B0f"},
    {"fahrenheit", "\u00B0f"},
    {"deg/s", "\u00B0/s"},
    {"deg/sec", "\u00B0/s"},
    {"degree/s", "\u00B0/s"},
    {"degrees/s", "\u00B0/s"},
    {"degrees/sec", "\u00B0/s"},
    {"\u00B0/sec", "\u00B0/s"},
    {"\u00BA/s", "\u00B0/s"},
    {"percent", "%"},
    {"pct", "%"},
    {"1/min", "rpm"},
    {"/min", "rpm"},
    {"min-1", "rpm"},
    {"min^-1", "rpm"},
    {"r/min", "rpm"},
    {"rev/min", "rpm"},
    {"u/min", "rpm"},
    {"n-m", "Nm"},
    {"n*m", "Nm"},
    {"n.m", "Nm"},
    {"m/s2", "m/s^2"},
    {"m/s\u00B2", "m/s^2"},
    {"m/s/s", "m/s^2"},
    {"m/s**2", "m/s^2"},
    {"m/sec^2", "m/s^2"},
    {"m/sec2", "m/s^2"},
    {"sec", "s"},
    {"secs", "s"},
    {"second", "s"},
    {"seconds", "s"},
    {"msec", "ms"},
    {"milliseconds", "ms"},
    {"minute", "min"},
    {"minutes", "min"},
    {"hour", "h"},
    {"hours", "h"},
    {"hr", "h"},
    {"hrs", "h"},
    {"volt", "V"},
    {"volts", "V"},
    {"amp", "A"},
    {"amps", "A"},
    {"ampere", "A"},
    {"liter", "l"},
    {"liters", "l"},
    {"litre", "l"},
    {"litres", "l"},
    {"meter", "m"},
    {"meters", "m"},
    {"metre", "m"},
    {"metres", "m"},
});

/// Units whose case says nothing: no other unit differs from them in case alone.
constexpr std::array<std::string_view, 14> kCaseless = {"km/h", "mph", "\u00B0c", "\u00B0f", "rpm",
                                                        "bar",  "kpa", "hpa",     "km",      "ppm",
                                                        "min",  "hz",  "kw",      "l"};

std::string without_blanks(std::string_view text) {
  std::string kept(text);
  std::erase_if(kept, [](char c) { return c == ' ' || c == '\t'; });
  return kept;
}

std::string in_small_letters(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

}  // namespace

std::string unit_of(std::string_view spelling) {
  const std::string kept = without_blanks(to_utf8(spelling, encoding_of(spelling)));
  const std::string small = in_small_letters(kept);
  const auto alias = std::ranges::find(kAliases, small, &Alias::spelling);
  if (alias != kAliases.end()) return std::string(alias->unit);
  const bool is_caseless = std::ranges::find(kCaseless, small) != kCaseless.end();
  return is_caseless ? small : kept;
}

}  // namespace zelk::check
