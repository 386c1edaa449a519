/// \file
/// A recorded drive: a log of candump, and the database of its messages.

#ifndef ZELK_BENCH_DRIVE_HPP
#define ZELK_BENCH_DRIVE_HPP

#include <cstddef>
#include <string>

#include "synthetic.hpp"

namespace zelk::bench {

/// Messages of 8 bytes with the 8 signals of `kLayout` each, every other one with an extended
/// identifier.
std::string drive_database(int messages);

/// Lines of `candump -l`, such as "(1700000000.123456) can1 18F00131#0123456789ABCDEF". Messages
/// come every 10, 20, 50 or 100 ms, up to 200 microseconds late, with random content; extended
/// identifiers are those of a second bus.
std::string drive_log(int messages, std::size_t lines);

/// A drive in the folder for temporary files.
struct Drive {
  Drive(const std::string& name, int messages, std::size_t line_count)
      : lines(line_count),
        database(name + ".dbc", drive_database(messages)),
        log(name + ".log", drive_log(messages, line_count)) {}

  std::size_t lines;
  TemporaryFile database;
  TemporaryFile log;
};

}  // namespace zelk::bench

#endif
