/// \file
/// Operations of the class interface report failures, and do not raise.

#ifndef ZELK_MODEL_WITHOUT_RAISING_HPP
#define ZELK_MODEL_WITHOUT_RAISING_HPP

#include <new>

#include "model/errors.hpp"
#include "zelk/exception.hpp"

namespace zelk {

/// Calls `operation`, and reports in the error text when memory runs out for it. What raises
/// `ZelkException` has appended its report to the error text already.
///
/// @return what `operation` returns; `failure` when it raises
template <typename Result, typename Operation>
Result without_raising(Result failure, Operation operation) try {
  return operation();
} catch (const ZelkException&) {
  return failure;
} catch (const std::bad_alloc&) {
  zelk_note(ZELK_ERR_MEMORY, kNoLine, nullptr);
  return failure;
}

/// The same for an operation without a result.
///
/// @return whether it was done
template <typename Operation>
bool without_raising(Operation operation) {
  return without_raising(false, [&operation] {
    operation();
    return true;
  });
}

}  // namespace zelk

#endif
