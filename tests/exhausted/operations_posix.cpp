// Operations of the libraries, each run while its 1st, 2nd, 3rd ... allocation fails: once, and
// all from that one on.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "exhausted/heap.hpp"
#include "operations/operation.hpp"

namespace {

/// What was seen of a call.
struct Outcome {
  std::string answer, state;
  bool is_reported = false;  ///< that there was no memory

  bool is_like(const Outcome& other) const {
    return answer == other.answer && state == other.state;
  }
};

Outcome outcome_of(const World& world, const Answer& answer) {
  const std::string told = zelk_get_error_text();
  return {answer.text, world.state(), told.find("not enough memory\n") != std::string::npos};
}

bool is_one_of(const std::string& answer, const char* answers) {
  return ("|" + std::string(answers) + "|").find("|" + answer + "|") != std::string::npos;
}

/// One run of an operation, and what it has to come to.
struct Exhaustion {
  const Operation& operation;
  Outcome before, whole;

  explicit Exhaustion(const Operation& wanted) : operation(wanted) {
    const auto world = operation.make_world();
    zelk_clear_error_text();
    before = outcome_of(*world, "");
    whole = outcome_of(*world, answer_of(operation, *world));
  }

  void check(const Outcome& seen) const {
    if (seen.is_like(whole)) return;  // it did without
    const bool has_part = operation.promise == Promise::kLeavesAPart;
    ASSERT_TRUE(operation.failed) << "it needs no memory, and answers " << seen.answer;
    const bool is_silent = is_one_of("silent:" + seen.answer, operation.failed);
    EXPECT_TRUE(is_silent || is_one_of(seen.answer, operation.failed)) << seen.answer;
    EXPECT_TRUE(is_silent || seen.is_reported == (operation.promise != Promise::kIsSilent));
    EXPECT_TRUE(has_part || seen.state == before.state) << seen.state << "was:\n" << before.state;
  }

  /// @return whether an allocation failed
  bool fails_at(std::size_t n, ExhaustedHeap::Extent extent) const {
    const auto world = operation.make_world();
    zelk_clear_error_text();
    Answer answer = "";
    bool has_failed = false;
    {
      const ExhaustedHeap heap(n, extent);
      answer = answer_of(operation, *world);
      has_failed = heap.has_failed();
    }
    const Outcome seen = outcome_of(*world, answer);
    check(seen);
    if (seen.is_like(whole)) return has_failed;
    zelk_clear_error_text();
    const Outcome again = outcome_of(*world, answer_of(operation, *world));
    EXPECT_EQ(again.answer, whole.answer) << "with memory again";
    EXPECT_EQ(again.state, whole.state) << "with memory again";
    return has_failed;
  }
};

/// Faults that the running test has found so far.
int faults_found() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

/// Fails each allocation of an operation in turn.
void exhaust(const Operation& operation) {
  const Exhaustion runs(operation);
  for (const auto extent : {ExhaustedHeap::Extent::kFromThenOn, ExhaustedHeap::Extent::kOnce}) {
    std::size_t n = 0;
    const int faults = faults_found();
    for (bool has_failed = true; has_failed && faults_found() == faults; ++n) {
      const testing::ScopedTrace trace(
          __FILE__, __LINE__,
          std::string(operation.names) +
              (extent == ExhaustedHeap::Extent::kOnce ? ", once: " : ": ") + std::to_string(n));
      const long blocks = ExhaustedHeap::blocks();
      has_failed = runs.fails_at(n, extent);
      if (faults_found() != faults) return;
      EXPECT_EQ(ExhaustedHeap::blocks(), blocks) << "blocks are leaked";
    }
    if (faults_found() != faults) return;
    EXPECT_EQ(n == 1, operation.promise == Promise::kAllocatesNothing) << operation.names;
  }
}

/// The address sanitizer ends the process when it has no memory for a new thread.
bool can_run([[maybe_unused]] const Operation& operation) {
#ifdef __SANITIZE_ADDRESS__
  return std::string_view(operation.failed ? operation.failed : "").find("Resource temporarily") ==
         std::string_view::npos;
#else
  return true;
#endif
}

class ExhaustedOperations : public testing::TestWithParam<std::string> {};

TEST_P(ExhaustedOperations, KeepTheirPromises) {
  zelk_note(0, 0, std::string(ZELK_ERROR_LINE_SIZE, 'x').c_str());  // makes room for reports
  zelk_get_error_text();
  for (const Operation& operation : operations()[GetParam()])
    if (can_run(operation)) exhaust(operation);
}

INSTANTIATE_TEST_SUITE_P(, ExhaustedOperations, testing::ValuesIn(subjects()),
                         [](const auto& subject) { return subject.param; });

}  // namespace
