/// \file
/// What each compiler spells in its own way. Only this header and the public `zelk/export.h` test
/// for the compiler.

#ifndef ZELK_BASE_COMPILER_HPP
#define ZELK_BASE_COMPILER_HPP

#include <cstdint>

#if defined(_MSC_VER)
#include <intrin.h>
#include <stdlib.h>
#endif

// `ZELK_HAS_SSE2`: 1 where the instructions on 16 bytes are there that each x86-64 processor has.
#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define ZELK_HAS_SSE2 1
#else
#define ZELK_HAS_SSE2 0
#endif

// In front of a function definition. `ZELK_ALWAYS_INLINE`, `ZELK_NEVER_INLINE`: inlined wherever it
// is called, or nowhere. `ZELK_AT_LOAD`, `ZELK_AT_UNLOAD`: called when the library is loaded or
// unloaded; on Windows the system calls `DllMain` instead.
#if defined(_MSC_VER)
#define ZELK_ALWAYS_INLINE __forceinline
#define ZELK_NEVER_INLINE __declspec(noinline)
#else
#define ZELK_ALWAYS_INLINE [[gnu::always_inline]] inline
#define ZELK_NEVER_INLINE [[gnu::noinline]]
#define ZELK_AT_LOAD [[gnu::constructor]]
#define ZELK_AT_UNLOAD [[gnu::destructor]]
#endif

// `ZELK_FOR_AVX2`: compiled, with all that it calls, for processors with instructions on 32 bytes,
// and to be called only where `has_avx2()`. These have no multiplication and addition in one, so
// that results are the same ones. Windows does not align the stack as these instructions want it.
#if defined(__x86_64__) && !defined(_WIN32)
#define ZELK_FOR_AVX2 [[gnu::target("avx2"), gnu::flatten]]
#define ZELK_KNOWS_AVX2 1
#else
#define ZELK_FOR_AVX2
#define ZELK_KNOWS_AVX2 0
#endif

namespace zelk {

// The bytes in reverse order.
#if defined(_MSC_VER)
inline std::uint64_t reversed_bytes(std::uint64_t word) { return _byteswap_uint64(word); }
inline std::uint32_t reversed_bytes(std::uint32_t word) { return _byteswap_ulong(word); }
inline std::uint16_t reversed_bytes(std::uint16_t word) { return _byteswap_ushort(word); }
#else
constexpr std::uint64_t reversed_bytes(std::uint64_t word) { return __builtin_bswap64(word); }
constexpr std::uint32_t reversed_bytes(std::uint32_t word) { return __builtin_bswap32(word); }
constexpr std::uint16_t reversed_bytes(std::uint16_t word) { return __builtin_bswap16(word); }
#endif

/// Whether the processor runs what is `ZELK_FOR_AVX2`.
inline bool has_avx2() {
#if ZELK_KNOWS_AVX2
  return __builtin_cpu_supports("avx2") != 0;
#else
  return false;
#endif
}

/// The two halves of a 128-bit product.
struct WideProduct {
  std::uint64_t low;
  std::uint64_t high;
};

inline WideProduct wide_product(std::uint64_t a, std::uint64_t b) {
#if defined(_MSC_VER)
  WideProduct product{};
  product.low = _umul128(a, b, &product.high);
  return product;
#elif !defined(__SIZEOF_INT128__)
  // By halves, whose products have 64 bits; none of the sums overflows.
  const std::uint64_t a_low = a & UINT32_MAX;
  const std::uint64_t b_low = b & UINT32_MAX;
  const std::uint64_t low = a_low * b_low;
  const std::uint64_t middle = (a >> 32) * b_low + (low >> 32);
  const std::uint64_t other = a_low * (b >> 32) + (middle & UINT32_MAX);
  return {other << 32 | (low & UINT32_MAX), (a >> 32) * (b >> 32) + (middle >> 32) + (other >> 32)};
#else
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return {static_cast<std::uint64_t>(product), static_cast<std::uint64_t>(product >> 64)};
#endif
}

}  // namespace zelk

#endif
