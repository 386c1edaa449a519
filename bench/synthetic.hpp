/// \file
/// A synthetic database of any size, written by the benchmarks themselves.

#ifndef ZELK_BENCH_SYNTHETIC_HPP
#define ZELK_BENCH_SYNTHETIC_HPP

#include <string>

namespace zelk::bench {

inline constexpr int kSignalsPerMessage = 12;

/// Text of a database of `messages` messages with 12 signals each. Every message and signal has a
/// comment and an attribute value, every fourth signal value descriptions; the signals are Intel
/// and Motorola, signed and unsigned, and have one or two of 50 nodes as receivers. About 2.5 kB a
/// message.
std::string synthetic_database(int messages);

/// A file in the folder for temporary files, removed when the object goes.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& name, const std::string& content);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace zelk::bench

#endif
