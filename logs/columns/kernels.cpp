#include "logs/columns/kernels.hpp"

#include <array>
#include <bit>
#include <limits>
#include <type_traits>

#include "base/signal_bits.hpp"

namespace zelk::logs {

namespace {

/// Calls `number_of(word)` for each word, and scales what it gives.
template <typename NumberOf>
void scale_all(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
               unsigned char* out, const NumberOf& number_of) {
  auto* const values = reinterpret_cast<double*>(out);
  const double factor = conversion.factor;
  const double offset = conversion.offset;
  for (std::size_t i = 0; i < count; ++i) values[i] = number_of(words[i]) * factor + offset;
}

// Integers below 2^52 become doubles by arithmetic that processors do for several at once: as the
// lowest bits of 2^52 they count ones, and the difference to it is exact.
constexpr unsigned kFractionBits = std::numeric_limits<double>::digits - 1;
constexpr double kOnesBase = 0x1p52;

void scale_short(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                 unsigned char* out) {
  const BitField field = conversion.field;
  const double base = kOnesBase + static_cast<double>(field.sign);
  scale_all(conversion, words, count, out, [field, base](std::uint64_t word) {
    const std::uint64_t bits = (word >> field.shift & field.mask) ^ field.sign;
    return std::bit_cast<double>(bits | std::bit_cast<std::uint64_t>(kOnesBase)) - base;
  });
}

template <typename Integer>
void scale_long(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                unsigned char* out) {
  const BitField field = conversion.field;
  scale_all(conversion, words, count, out, [field](std::uint64_t word) {
    return static_cast<double>(static_cast<Integer>(field.raw(word)));
  });
}

void scale_single(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                  unsigned char* out) {
  const unsigned shift = conversion.field.shift;
  scale_all(conversion, words, count, out, [shift](std::uint64_t word) {
    return double{std::bit_cast<float>(static_cast<std::uint32_t>(word >> shift))};
  });
}

void scale_double(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                  unsigned char* out) {
  scale_all(conversion, words, count, out,
            [](std::uint64_t word) { return std::bit_cast<double>(word); });
}

/// The bits of floats and doubles are those of integers of their width.
template <typename Unsigned>
void copy_raw(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
              unsigned char* out) {
  auto* const values = reinterpret_cast<Unsigned*>(out);
  const BitField field = conversion.field;
  for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<Unsigned>(field.raw(words[i]));
}

void find_texts(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                unsigned char* out) {
  auto* const values = reinterpret_cast<std::int32_t*>(out);
  const Conversion by = conversion;
  for (std::size_t i = 0; i < count; ++i) values[i] = by.texts->find(by.field.raw(words[i]));
}

/// A loop, compiled again for processors that do more values at once.
template <Kernel kLoop>
ZELK_FOR_AVX2 void wide(const Conversion& conversion, const std::uint64_t* words, std::size_t count,
                        unsigned char* out) {
  kLoop(conversion, words, count, out);
}

template <Kernel kLoop>
Kernel form_of(bool is_wide) {
  return is_wide ? wide<kLoop> : kLoop;
}

struct TypeRow {
  Kernel (*form)(bool is_wide);
  std::size_t width;
  const char* format;
};

template <typename Unsigned>
constexpr TypeRow row(const char* format) {
  return {form_of<copy_raw<Unsigned>>, sizeof(Unsigned), format};
}

/// In the order of `ZelkColumnType`.
constexpr std::array<TypeRow, 11> kTypes = {{
    row<std::uint8_t>("c"),
    row<std::uint16_t>("s"),
    row<std::uint32_t>("i"),
    row<std::uint64_t>("l"),
    row<std::uint8_t>("C"),
    row<std::uint16_t>("S"),
    row<std::uint32_t>("I"),
    row<std::uint64_t>("L"),
    row<std::uint32_t>("f"),
    row<std::uint64_t>("g"),
    {form_of<find_texts>, sizeof(std::int32_t), "i"},
}};

const TypeRow& row_of(ZelkColumnType type) { return kTypes[static_cast<std::size_t>(type)]; }

}  // namespace

Kernel physical_kernel(const sigblk& signal, const BitField& field, bool is_wide) {
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return form_of<scale_double>(is_wide);
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) return form_of<scale_single>(is_wide);
  if (field.mask <= low_bits(kFractionBits)) return form_of<scale_short>(is_wide);
  return is_signed(signal) ? form_of<scale_long<std::int64_t>>(is_wide)
                           : form_of<scale_long<std::uint64_t>>(is_wide);
}

Kernel raw_kernel(ZelkColumnType type, bool is_wide) { return row_of(type).form(is_wide); }

ZelkColumnType raw_type(const sigblk& signal) {
  if (signal.value_type == ZELK_VALUE_IEEE_SINGLE) return ZelkColumnType::kFloat;
  if (signal.value_type == ZELK_VALUE_IEEE_DOUBLE) return ZelkColumnType::kDouble;
  unsigned type = signal.length > 32 ? 3 : signal.length > 16 ? 2 : signal.length > 8 ? 1 : 0;
  if (!is_signed(signal)) type += static_cast<unsigned>(ZelkColumnType::kUint8);
  return static_cast<ZelkColumnType>(type);
}

std::size_t width_of(ZelkColumnType type) { return row_of(type).width; }
const char* format_of(ZelkColumnType type) { return row_of(type).format; }

}  // namespace zelk::logs
