/// \file
/// What is done with databases and logs: calls of the libraries and commands of the program.

#ifndef ZELK_BENCH_GROWTH_OPERATIONS_HPP
#define ZELK_BENCH_GROWTH_OPERATIONS_HPP

#include <functional>
#include <string>
#include <vector>

namespace zelk::bench {

/// The input of an operation.
struct Input {
  std::string program;   ///< path of `zelk`
  std::string database;  ///< a file, or the one beside a log
  std::string other;     ///< a database with half of its objects, or a log
  std::string out;       ///< a path at which nothing is; removed behind the operation
  std::size_t count;     ///< numbers of which the input is made
};

struct Operation {
  std::string name;
  std::function<double(const Input&)> seconds;
};

std::vector<Operation> library_operations();
std::vector<Operation> opening_operations();  ///< of as many databases as their input has numbers
std::vector<Operation> database_commands();
std::vector<Operation> repair_commands();  ///< for databases that are broken
std::vector<Operation> log_commands();

}  // namespace zelk::bench

#endif
