/// \file
/// Tokens as the lexer hands them to the parser, and the parser's semantic values.

#ifndef ZELK_READER_TOKEN_HPP
#define ZELK_READER_TOKEN_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zelk {

/// Text of a token, borrowed from the window of the read until the statement ends. No terminating
/// NUL.
struct TokenText {
  const char* data;
  std::size_t size;

  std::string_view view() const { return {data, size}; }
};

/// Two reals that belong together: factor and offset, minimum and maximum.
struct RealPair {
  double first;
  double second;
};

/// A length in bits, and an order number, from which the byte order follows.
struct Segment {
  std::uint32_t length_bits;
  std::uint32_t order;
};

/// Trivially copyable, so that the parser's stack is plain memory.
union SemanticValue {
  std::uint32_t integer;
  std::int64_t whole;  ///< an integer behind an optional sign
  std::int32_t kind;   ///< `zelk_obj_t`
  double real;
  TokenText text;
  Segment segment;
};

}  // namespace zelk

#endif
