// A signal's value as a text.

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>

#include "base/text_view.hpp"
#include "codec/presence.hpp"
#include "codec/signal_value.hpp"
#include "zelk/query.h"

namespace zelk::codec {
namespace {

/// The caller's buffer.
struct Target {
  char* text;
  std::size_t size;
};

ZelkSigvalueResult put(Target target, std::string_view text) {
  if (text.size() >= target.size) return ZelkSigvalueBufferTooSmall;
  target.text[text.copy(target.text, text.size())] = '\0';
  return ZelkSigvalueOk;
}

/// Prints in the caller's own format.
template <typename... Arguments>
ZelkSigvalueResult print(Target target, const char* format, Arguments... arguments) {
  const int length = std::snprintf(nullptr, 0, format, arguments...);
  if (length < 0) return ZelkSigvalueError;
  if (static_cast<std::size_t>(length) >= target.size) return ZelkSigvalueBufferTooSmall;
  static_cast<void>(std::snprintf(target.text, target.size, format, arguments...));
  return ZelkSigvalueOk;
}

/// A number as "%d", "%x" or "%lg" prints it in the C locale, and what stands behind it.
class NumberLine {
 public:
  explicit NumberLine(std::int32_t number) { end_ = std::to_chars(begin(), limit(), number).ptr; }
  explicit NumberLine(std::uint32_t number) {
    end_ = std::to_chars(begin(), limit(), number, 16).ptr;
  }
  explicit NumberLine(double number) {
    constexpr int kDigits = 6;
    end_ = std::to_chars(begin(), limit(), number, std::chars_format::general, kDigits).ptr;
  }

  /// Appends a blank and a unit, of at most 40 characters.
  NumberLine& with(std::string_view unit) {
    *end_++ = ' ';
    end_ += unit.copy(end_, unit.size());
    return *this;
  }

  std::string_view view() const {
    return {text_.data(), static_cast<std::size_t>(end_ - text_.data())};
  }

 private:
  char* begin() { return text_.data(); }
  char* limit() { return text_.data() + kNumberMax; }

  static constexpr std::size_t kNumberMax = 32;
  std::array<char, kNumberMax + 1 + sizeof sigblk::unit> text_{};
  char* end_ = nullptr;
};

ZelkSigvalueResult put_decimal(Target target, std::uint32_t low, const sigblk& signal,
                               const char* format) {
  const auto number = static_cast<std::int32_t>(sign_handled(low, signal));
  return format ? print(target, format, number) : put(target, NumberLine(number).view());
}

ZelkSigvalueResult put_hex(Target target, std::uint32_t low, const char* format) {
  return format ? print(target, format, low) : put(target, NumberLine(low).view());
}

ZelkSigvalueResult put_physical(Target target, double physical, const char* format) {
  return format ? print(target, format, physical) : put(target, NumberLine(physical).view());
}

ZelkSigvalueResult put_with_unit(Target target, double physical, const sigblk& signal,
                                 const char* format) {
  if (!format) return put(target, NumberLine(physical).with(view(signal.unit)).view());
  char unit[sizeof signal.unit + 1] = {};
  view(signal.unit).copy(unit, sizeof signal.unit);
  return print(target, format, physical, static_cast<const char*>(unit));
}

/// The bytes of the value, the most significant first, with a blank between two.
///
/// @param format  of one byte, for `width` characters
ZelkSigvalueResult put_bytes(Target target, const Words& words, const sigblk& signal,
                             const char* format, std::size_t width) {
  const std::size_t count = (signal.length + std::size_t{7}) / 8;
  if (target.size == 0 || (width + 1) * count > target.size) return ZelkSigvalueBufferTooSmall;
  char* out = target.text;
  for (std::size_t i = count; i-- > 0;) {
    static_cast<void>(std::snprintf(out, width + 1, format, byte_of(words, i)));
    out += width;
    if (i > 0) *out++ = ' ';
  }
  *out = '\0';
  return ZelkSigvalueOk;
}

ZelkSigvalueResult put_binary(Target target, const Words& words, const sigblk& signal) {
  if (target.size <= signal.length) return ZelkSigvalueBufferTooSmall;
  char* out = target.text;
  for (unsigned i = signal.length; i-- > 0;)
    *out++ = (words[i / 32] >> (i % 32) & 1) != 0 ? '1' : '0';
  *out = '\0';
  return ZelkSigvalueOk;
}

ZelkSigvalueResult put_description(Target target, std::uint32_t low, const sigblk& signal) {
  const char* const text = zelk_get_sig_enumsymbol(&signal, low);
  return text ? put(target, text) : ZelkSigvalueError;
}

/// The low word as a number: signed when it is the whole of a signed signal.
double low_number(std::uint32_t low, const sigblk& signal) {
  if (!is_signed(signal) || signal.length > kLongMax) return low;
  return static_cast<std::int32_t>(sign_handled(low, signal));
}

/// Only the low word was printed: a longer signal has another value.
ZelkSigvalueResult unless_long(ZelkSigvalueResult result, const sigblk& signal) {
  return result == ZelkSigvalueOk && signal.length > kLongMax ? ZelkSigvalueTooLong : result;
}

ZelkSigvalueResult put_value(Target target, const Words& words, const sigblk& signal,
                             ZelkSigvalueFormat text_format, const char* format) {
  double physical = 0;
  const ZelkSigvalueResult range = to_physical(low_number(words[0], signal), signal, physical);
  switch (text_format) {
    case ZelkFormatDecimal:
      return unless_long(put_decimal(target, words[0], signal, format), signal);
    case ZelkFormatHex:
      return unless_long(put_hex(target, words[0], format), signal);
    case ZelkFormatDecimalBytes:
      return put_bytes(target, words, signal, "%3d", 3);
    case ZelkFormatHexBytes:
      return put_bytes(target, words, signal, "%02X", 2);
    case ZelkFormatPhysical: {
      const auto result = unless_long(put_physical(target, physical, format), signal);
      return result != ZelkSigvalueOk ? result : range;
    }
    case ZelkFormatPhysicalUnit: {
      const auto result = unless_long(put_with_unit(target, physical, signal, format), signal);
      return result != ZelkSigvalueOk ? result : range;
    }
    case ZelkFormatValueDescription:
      return put_description(target, words[0], signal);
    case ZelkFormatNone:
      return ZelkSigvalueOk;
    case ZelkFormatBinary:
      return put_binary(target, words, signal);
  }
  return ZelkSigvalueError;
}

}  // namespace

ZelkSigvalueResult value_text(const unsigned char* frame, const sigblk& signal, char* text,
                              std::size_t size, ZelkSigvalueFormat text_format,
                              const char* format) {
  constexpr unsigned kTextMax = 96;
  if (signal.length > kTextMax) return ZelkSigvalueTooLong;
  Words words = {};
  if (!extract_string(frame, locate(signal), signal.length, words)) return ZelkSigvalueError;
  const ZelkSigvalueResult result = put_value({text, size}, words, signal, text_format, format);
  return result != ZelkSigvalueOk ? result : presence(frame, signal);
}

}  // namespace zelk::codec
