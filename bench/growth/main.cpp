// Measures how processor time grows with the size of the input: of every call and command, for
// databases and logs of each kind of statements or lines. Prints what grows faster than N log N.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string_view>

#include "growth/measuring.hpp"
#include "growth/operations.hpp"
#include "growth/shapes.hpp"

namespace zelk::bench {
namespace {

namespace fs = std::filesystem;

// N log N gives 2.2 at most, a square 4. The rest is for caches, which larger inputs leave, and for
// what else the machine does.
constexpr double kSteep = 3;
// Of the largest input. In less time 16,000 statements are not compared with each other.
constexpr double kLeastSeconds = 0.1;
constexpr std::size_t kStatements = 4000;
constexpr std::size_t kLines = 32000;
constexpr std::size_t kDatabases = 1000;
constexpr std::array<std::size_t, 3> kSizes = {1, 2, 4};

using Times = std::array<double, kSizes.size()>;

double factor(const Times& times, std::size_t index) {
  return times[index] == kNoEnd ? kNoEnd : times[index] / times[index - 1];
}

bool is_steep(const Times& times) {
  return times[2] == kNoEnd || (times[2] > kLeastSeconds && factor(times, 2) > kSteep);
}

/// A text of each size, made when it is wanted, in files that the destructor removes.
class Files {
 public:
  using MakeText = std::function<std::string(Numbers)>;

  Files(std::string folder, std::string name, std::string end, MakeText text)
      : folder_(std::move(folder)),
        name_(std::move(name)),
        end_(std::move(end)),
        text_(std::move(text)) {}
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() {
    for (const auto& [numbers, path] : paths_) {
      for (const char* end : {"", ".json", ".kcd"}) fs::remove(path + end);
    }
  }

  const std::string& path(Numbers numbers) {
    std::string& path = paths_[{numbers.first, numbers.count}];
    if (path.empty()) {
      path = folder_ + "/" + name_ + std::to_string(paths_.size()) + end_;
      std::ofstream(path, std::ios::binary) << text_(numbers);
    }
    return path;
  }

 private:
  std::string folder_, name_, end_;
  MakeText text_;
  std::map<std::pair<std::size_t, std::size_t>, std::string> paths_;
};

/// What is chosen on the command line.
struct Choice {
  std::string program;
  std::string shape;      ///< part of its name
  std::string operation;  ///< likewise
};

class Growth {
 public:
  explicit Growth(Choice choice) : choice_(std::move(choice)) { fs::create_directory(folder_); }
  Growth(const Growth&) = delete;
  Growth& operator=(const Growth&) = delete;
  ~Growth() { fs::remove_all(folder_); }

  void measure(const std::vector<Operation>& operations, const Shape& shape, const char* variant,
               const Files::MakeText& text) {
    const std::string name = std::string(shape.name) + variant;
    Files files(folder_, "in", ".dbc", text);
    for (const Operation& operation : operations) {
      if (!is_chosen(operation, name)) continue;
      measure(operation, shape, name, kStatements, [&](Numbers n) {
        return Input{choice_.program, files.path(n), files.path({n.first + n.count / 2, n.count}),
                     folder_ + "/out", n.count};
      });
    }
  }

  void measure_logs(const Shape& shape) {
    const std::string name = std::string("log: ") + shape.name;
    Files files(folder_, "log", ".log", shape.text);
    Files database(folder_, "database", ".dbc", [](Numbers) {
      return std::string(
          "BS_:\nBU_: N\nBO_ 1 M: 4 N\n SG_ S : 0|32@0+ (1,0) [0|0] \"\" N\n"
          "BO_ 2 X: 4 N\n SG_ W M : 0|32@0+ (1,0) [0|0] \"\" N\n");
    });
    for (const Operation& operation : log_commands()) {
      if (!is_chosen(operation, name)) continue;
      measure(operation, shape, name, kLines, [&](Numbers n) {
        return Input{choice_.program, database.path({0, 0}), files.path(n), folder_ + "/out",
                     n.count};
      });
    }
  }

  void measure_opening() {
    const Shape shape{"databases", nullptr, 32000};
    for (const Operation& operation : opening_operations()) {
      if (!is_chosen(operation, shape.name)) continue;
      measure(operation, shape, shape.name, kDatabases, [&](Numbers n) {
        return Input{choice_.program, {}, {}, folder_ + "/out", n.count};
      });
    }
  }

  /// @return whether nothing grows too fast
  bool print() const {
    std::printf(
        "\n| Call or command | Steepest for | N | Seconds at 4 N | 2 N / N | 4 N / 2 N |\n"
        "|---|---|---|---|---|---|\n");
    for (const auto& [operation, worst] : worst_) {
      std::printf("| %s | %s | %zu | %.2f | %.2f | %.2f |\n", operation.c_str(),
                  worst.shape.c_str(), worst.numbers, worst.times[2], factor(worst.times, 1),
                  factor(worst.times, 2));
    }
    std::printf("\n%zu measured, %zu grow too fast\n", measured_, steep_);
    return steep_ == 0;
  }

 private:
  using MakeInput = std::function<Input(Numbers)>;
  struct Worst {
    std::string shape;
    std::size_t numbers = 0;
    Times times{};
  };

  bool is_chosen(const Operation& operation, const std::string& shape) const {
    return shape.find(choice_.shape) != std::string::npos &&
           operation.name.find(choice_.operation) != std::string::npos;
  }

  void measure(const Operation& operation, const Shape& shape, const std::string& name,
               std::size_t first_numbers, const MakeInput& input) try {
    const auto seconds = [&](std::size_t count, int rounds) {
      return least_seconds(operation, input, count, rounds);
    };
    std::size_t numbers = std::min(first_numbers, shape.most / 4);
    ++measured_;
    Times times = {0, 0, seconds(4 * numbers, 1)};
    if (times[2] < kLeastSeconds) return;
    times[0] = seconds(numbers, 1);
    times[1] = seconds(2 * numbers, 1);
    // What leaves the caches grows faster for one or two doublings; a square goes on.
    while (is_steep(times) && times[2] < 5 && 8 * numbers <= shape.most) {
      numbers *= 2;
      times = {seconds(numbers, 2), seconds(2 * numbers, 2), seconds(4 * numbers, 2)};
    }
    note(operation.name, {name, numbers, times});
  } catch (const std::exception& error) {
    std::printf("%s, %s: %s\n", operation.name.c_str(), name.c_str(), error.what());
    ++steep_;
  }

  /// The least of some measurements: others use the machine as well.
  double least_seconds(const Operation& operation, const MakeInput& input, std::size_t count,
                       int rounds) const {
    double least = kNoEnd;
    for (int round = 0; round < rounds; ++round) {
      const double seconds = operation.seconds(input({1, count}));
      for (const char* end : {"", ".dbc", ".json", ".kcd", ".html", ".svg"})
        fs::remove_all(folder_ + "/out" + end);
      least = std::min(least, seconds);
      if (seconds > 5) break;
    }
    return least;
  }

  void note(const std::string& operation, const Worst& found) {
    if (is_steep(found.times)) {
      ++steep_;
      std::printf("TOO FAST  %s, %s: N = %zu, %.3f s, %.3f s, %.3f s\n", operation.c_str(),
                  found.shape.c_str(), found.numbers, found.times[0], found.times[1],
                  found.times[2]);
      std::fflush(stdout);
    }
    Worst& worst = worst_[operation];
    if (worst.numbers == 0 || factor(found.times, 2) > factor(worst.times, 2)) worst = found;
  }

  Choice choice_;
  std::string folder_ =
      (fs::temp_directory_path() / ("zelk_growth." + std::to_string(process_id()))).string();
  std::map<std::string, Worst> worst_;  ///< by operation
  std::size_t measured_ = 0;
  std::size_t steep_ = 0;
};

void measure_databases(Growth& growth, const Shape& shape) {
  growth.measure(library_operations(), shape, "", shape.text);
  growth.measure(database_commands(), shape, "", shape.text);
  for (const Damage& damage : damages()) {
    growth.measure(repair_commands(), shape, (std::string(", ") + damage.name).c_str(),
                   [&](Numbers n) { return damage.text(shape.text(n)); });
  }
}

bool measure_all(const Choice& choice) {
  Growth growth(choice);
  for (const auto& shapes : {object_shapes(), description_shapes(), odd_shapes()}) {
    for (const Shape& shape : shapes) measure_databases(growth, shape);
  }
  for (const Shape& shape : log_shapes()) growth.measure_logs(shape);
  growth.measure_opening();
  return growth.print();
}

}  // namespace
}  // namespace zelk::bench

int main(int count, char** arguments) {
  if (count < 2 || count > 4) {
    std::fprintf(stderr, "usage: %s PROGRAM [PART_OF_SHAPE [PART_OF_OPERATION]]\n", arguments[0]);
    return 2;
  }
  const auto word = [&](int index) { return index < count ? arguments[index] : ""; };
  try {
    return zelk::bench::measure_all({word(1), word(2), word(3)}) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
    return 2;
  }
}
