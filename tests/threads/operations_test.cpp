// All operations of the libraries, in 8 threads at once: on objects of each thread's own, and on
// databases and lists that the threads share and nobody edits. The thread sanitizer finds what else
// they share.

#include "operations/operation.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/threads.hpp"

namespace {

/// What one thread sees of an operation.
std::string outcome_of(const Operation& operation) {
  const auto world = operation.make_world();
  zelk_clear_error_text();
  const Answer answer = answer_of(operation, *world);
  const std::string told = zelk_get_thread_error_text();
  return std::string(answer.text) + "\n" + told + world->state();
}

class OperationThreads : public testing::TestWithParam<std::string> {};

// In the first round all threads do the same, in the second each one something else.
TEST_P(OperationThreads, SeeWhatOneSees) {
  const std::vector<Operation>& table = operations()[GetParam()];
  std::vector<std::string> alone;
  for (const Operation& operation : table) alone.push_back(outcome_of(operation));
  const auto run = [&](int thread, int round) {
    const std::size_t first = round * thread * table.size() / kThreads;
    for (std::size_t i = 0; i < table.size(); ++i) {
      const std::size_t at = (first + i) % table.size();
      EXPECT_EQ(outcome_of(table[at]), alone[at]) << table[at].names;
    }
  };
  run_in_threads(run, 2);
}

INSTANTIATE_TEST_SUITE_P(, OperationThreads, testing::ValuesIn(subjects()),
                         [](const auto& subject) { return subject.param; });

}  // namespace
