/// \file
/// The parts of which databases of all shapes consist.

#ifndef ZELK_BENCH_GROWTH_DATABASE_TEXT_HPP
#define ZELK_BENCH_GROWTH_DATABASE_TEXT_HPP

#include <string>
#include <string_view>

#include "growth/text.hpp"

namespace zelk::bench {

inline std::string head(std::string_view nodes, std::string_view symbols = "") {
  std::string text = "VERSION \"\"\nNS_ :";
  put(text, symbols, "\nBS_:\nBU_: ", nodes, "\n");
  return text;
}

/// `N1, N2, N3` and so on.
inline std::string names(Numbers n, const char* name, const char* separator) {
  std::string text = each(n, [=](std::string& t, std::size_t i) { put(t, name, i, separator); });
  text.resize(text.size() - std::string_view(separator).size());
  return text;
}

inline std::string messages(Numbers n) {
  return each(
      n, [](std::string& t, std::size_t i) { put(t, "BO_ ", extended_id(i), " M", i, ": 8 N\n"); });
}

inline std::string messages_with_signal(Numbers n) {
  return each(n, [](std::string& t, std::size_t i) {
    put(t, "BO_ ", extended_id(i), " M", i, ": 8 N\n SG_ S : 0|32@1- (1,0) [0|0] \"\" N\n");
  });
}

inline std::string variables(Numbers n) {
  return each(n, [](std::string& t, std::size_t i) {
    put(t, "EV_ V", i, ": 0 [0|1] \"\" 0 ", i, " DUMMY_NODE_OSTREL0 N;\n");
  });
}

}  // namespace zelk::bench

#endif
