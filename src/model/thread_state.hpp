/// \file
/// What the library keeps for each thread.

#ifndef ZELK_MODEL_THREAD_STATE_HPP
#define ZELK_MODEL_THREAD_STATE_HPP

#include <string>
#include <vector>

#include "model/errors.hpp"

namespace zelk {

struct ThreadState {
  ErrorState errors;
  bool symbols_shortened = false;
  std::vector<std::string>
      announced_names;  ///< of the file that the thread read last, in file order
  /// Stands in for threads that find no memory for a state of their own; it holds no texts.
  bool is_shared = false;
};

/// The calling thread's, released when the thread ends. The main thread's stays to the end of the
/// process, and so does the reference.
ThreadState& thread_state() noexcept;

}  // namespace zelk

#endif
