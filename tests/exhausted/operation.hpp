/// Operations of the libraries, each run while its 1st, 2nd, 3rd ... allocation fails: once, and
/// all from that one on.
#ifndef ZELK_TESTS_EXHAUSTED_OPERATION_HPP
#define ZELK_TESTS_EXHAUSTED_OPERATION_HPP

#include <gtest/gtest.h>

#include <charconv>
#include <concepts>
#include <cstring>
#include <new>
#include <set>
#include <sstream>
#include <string>

#include "exhausted/heap.hpp"
#include "zelk/exception.hpp"
#include "zelk/zelk.h"

/// What a call returned, as a text; made without an allocation.
struct Answer {
  // NOLINTBEGIN(google-explicit-constructor): calls return what the library does
  Answer(const char* content) { std::strncpy(text, content ? content : "null", sizeof text - 1); }
  Answer(const void* pointer) : Answer(pointer ? "some" : "null") {}
  template <typename Number>
  requires std::integral<Number> || std::is_enum_v<Number> Answer(Number number) {
    std::to_chars(text, text + sizeof text - 1, static_cast<long>(number));
  }
  // NOLINTEND(google-explicit-constructor)

  char text[96] = {};
};

/// The answer of calls whose results do not matter.
template <typename... Results>
Answer called(const Results&...) {
  return "called";
}

/// What an operation promises where an allocation fails.
enum class Promise {
  kAllocatesNothing,
  kDoesWithout,  ///< the answer is right, and so is what it leaves
  kIsSilent,     ///< the answer is `failed`, and nothing has changed
  kReports,      ///< the answer is `failed`, the error text says why, and nothing has changed
  kLeavesAPart,  ///< `kReports`, but for what is changed: what its contract says
};

/// An operation on a `World`, which is made anew for each run and says by `state()` what there is
/// in it.
template <typename World>
struct Operation {
  const char* names;  ///< of the exports that it stands for, with blanks between them
  Promise promise;
  const char* failed;  ///< the answers without memory, with "|" between them, and "silent:" in
                       ///< front of those that need no report
  Answer (*call)(World&);
};

inline constexpr char kRaises[] = "ZelkException";
inline constexpr char kBadAlloc[] = "bad_alloc";

template <typename World>
Answer answer_of(const Operation<World>& operation, World& world) try {
  return operation.call(world);
} catch (const ZelkException&) {
  return kRaises;
} catch (const std::bad_alloc&) {
  return kBadAlloc;
} catch (const std::exception& error) {
  return error.what();
}

/// What was seen of a call.
struct Outcome {
  std::string answer, state;
  bool is_reported = false;  ///< that there was no memory

  bool is_like(const Outcome& other) const {
    return answer == other.answer && state == other.state;
  }
};

template <typename World>
Outcome outcome_of(World& world, const Answer& answer) {
  const std::string told = zelk_get_error_text();
  return {answer.text, world.state(), told.find("not enough memory\n") != std::string::npos};
}

inline bool is_one_of(const std::string& answer, const char* answers) {
  return ("|" + std::string(answers) + "|").find("|" + answer + "|") != std::string::npos;
}

/// One run of an operation, and what it has to come to.
template <typename World>
struct Exhaustion {
  const Operation<World>& operation;
  Outcome before, whole;

  explicit Exhaustion(const Operation<World>& wanted) : operation(wanted) {
    World world;
    zelk_clear_error_text();
    before = outcome_of(world, "");
    whole = outcome_of(world, answer_of(operation, world));
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
    World world;
    zelk_clear_error_text();
    Answer answer = "";
    bool has_failed = false;
    {
      const ExhaustedHeap heap(n, extent);
      answer = answer_of(operation, world);
      has_failed = heap.has_failed();
    }
    const Outcome seen = outcome_of(world, answer);
    check(seen);
    if (seen.is_like(whole)) return has_failed;
    zelk_clear_error_text();
    const Outcome again = outcome_of(world, answer_of(operation, world));
    EXPECT_EQ(again.answer, whole.answer) << "with memory again";
    EXPECT_EQ(again.state, whole.state) << "with memory again";
    return has_failed;
  }
};

/// Faults that the running test has found so far.
inline int faults_found() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

/// Fails each allocation of an operation in turn.
template <typename World>
void exhaust(const Operation<World>& operation) {
  const Exhaustion<World> runs(operation);
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

/// Whether a table names an export.
inline std::set<std::string>& named_exports() {
  static std::set<std::string> names;
  return names;
}

/// The operations of one subject. A test runs them, another one asks which exports they are for.
template <typename World>
class Operations {
 public:
  Operations(std::initializer_list<Operation<World>> operations) : all_(operations) {
    for (const auto& operation : all_) {
      std::istringstream names(operation.names);
      for (std::string name; names >> name;) named_exports().insert(name);
    }
  }
  void exhaust_all() const {
    zelk_note(0, 0, std::string(ZELK_ERROR_LINE_SIZE, 'x').c_str());  // makes room for reports
    zelk_get_error_text();
    for (const auto& operation : all_) exhaust(operation);
  }

 private:
  std::vector<Operation<World>> all_;
};

#endif
