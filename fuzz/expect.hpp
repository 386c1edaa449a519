/// What a fuzzer expects of the code that it tries.
#ifndef ZELK_FUZZ_EXPECT_HPP
#define ZELK_FUZZ_EXPECT_HPP

#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Ends the process, with what is wrong and a text that shows it, unless the condition holds.
inline void expect(bool condition, std::string_view what, std::string_view text = {}) {
  if (condition) return;
  std::fprintf(stderr, "%.*s\n%.*s\n", static_cast<int>(what.size()), what.data(),
               static_cast<int>(text.size()), text.data());
  std::abort();
}

#endif
