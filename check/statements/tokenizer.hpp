/// \file
/// Cuts a text into tokens, as the reader does where it can.

#ifndef ZELK_CHECK_STATEMENTS_TOKENIZER_HPP
#define ZELK_CHECK_STATEMENTS_TOKENIZER_HPP

#include <cstdint>
#include <vector>

#include "check/statements/fault.hpp"
#include "check/statements/source.hpp"
#include "check/statements/token.hpp"

namespace zelk::check {

struct Tokens {
  std::vector<Token> tokens;
  std::vector<Fault> faults;  ///< in characters; they have no statement yet
};

/// What the reader takes for space is space, but for bytes outside ASCII directly at a name, which
/// make it an odd one. A text that runs over a line which looks like the beginning of a statement,
/// and behind whose second quote no statement goes on, ends in front of that line.
Tokens tokenize(const Source& source);

}  // namespace zelk::check

#endif
