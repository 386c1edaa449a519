/// \file
/// Texts of findings.

#ifndef ZELK_CHECK_LINT_WORDS_HPP
#define ZELK_CHECK_LINT_WORDS_HPP

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/numbers.hpp"
#include "base/text_view.hpp"
#include "check/findings/sentences.hpp"

namespace zelk::check {

inline void append(std::string& text, std::string_view part) { text += part; }
inline void append(std::string& text, double number) { text += NumberText(number).view(); }
template <std::integral Integer>
void append(std::string& text, Integer number) {
  text += std::to_string(number);
}

/// The parts behind each other, numbers as the format spells them.
template <typename... Parts>
std::string join(const Parts&... parts) {
  std::string text;
  (append(text, parts), ...);
  return text;
}

/// An identifier as people read it: "0x1F4", without the bit that marks its format.
std::string hexadecimal(std::uint32_t id);

}  // namespace zelk::check

#endif
