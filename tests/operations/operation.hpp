/// Operations of the libraries, in tables: for tests that run them all, without memory
/// (exhausted/) or in several threads at once (threads/).
#ifndef ZELK_TESTS_OPERATIONS_OPERATION_HPP
#define ZELK_TESTS_OPERATIONS_OPERATION_HPP

#include <charconv>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

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

/// What can be compared of a result: a number as it is, and of a pointer whether it is null.
template <typename Result>
std::uint64_t number_of(const Result& result) {
  if constexpr (std::is_pointer_v<Result>) return result != nullptr;
  if constexpr (std::is_integral_v<Result> || std::is_enum_v<Result>) {
    return static_cast<std::uint64_t>(result);
  }
  return 0;
}

/// The answer of several calls at once.
template <typename... Results>
Answer called(const Results&... results) {
  std::uint64_t all = 0;
  ((all = 31 * all + number_of(results)), ...);
  return all == 0 ? Answer("called") : Answer(all);
}

/// What an operation promises where an allocation fails.
enum class Promise {
  kAllocatesNothing,
  kDoesWithout,  ///< the answer is right, and so is what it leaves
  kIsSilent,     ///< the answer is `failed`, and nothing has changed
  kReports,      ///< the answer is `failed`, the error text says why, and nothing has changed
  kLeavesAPart,  ///< `kReports`, but for what is changed: what its contract says
};

/// What an operation works on, made anew for each run; worlds of several threads live at once.
struct World {
  World() = default;
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  virtual ~World() = default;

  /// All that an operation can have changed.
  virtual std::string state() const { return {}; }
};

/// An operation as its table states it.
template <typename Given>
struct Stated {
  const char* names;  ///< of the exports that it stands for, with blanks between them
  Promise promise;
  const char* failed;  ///< the answers without memory, with "|" between them, and "silent:" in
                       ///< front of those that need no report
  Answer (*call)(Given&);
};

inline constexpr char kRaises[] = "ZelkException";
inline constexpr char kBadAlloc[] = "bad_alloc";

/// An operation of any world.
struct Operation {
  const char* names;
  Promise promise;
  const char* failed;
  std::function<std::unique_ptr<World>()> make_world;
  std::function<Answer(World&)> call;
};

inline Answer answer_of(const Operation& operation, World& world) try {
  return operation.call(world);
} catch (const ZelkException&) {
  return kRaises;
} catch (const std::bad_alloc&) {
  return kBadAlloc;
} catch (const std::exception& error) {
  return error.what();
}

/// All tables, by their subjects.
inline std::map<std::string, std::vector<Operation>>& operations() {
  static std::map<std::string, std::vector<Operation>> all;
  return all;
}

inline std::vector<std::string> subjects() {
  std::vector<std::string> all;
  for (const auto& [subject, table] : operations()) all.push_back(subject);
  return all;
}

/// Enters a table of operations that take what is given by a `Made` world.
template <typename Made, typename Given = Made>
struct Operations {
  Operations(const char* subject, const std::vector<Stated<Given>>& table) {
    for (const Stated<Given>& stated : table) {
      operations()[subject].push_back(
          {stated.names, stated.promise, stated.failed, [] { return std::make_unique<Made>(); },
           [call = stated.call](World& world) { return call(static_cast<Made&>(world)); }});
    }
  }
};

#endif
