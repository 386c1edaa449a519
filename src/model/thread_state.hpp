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
  /// The one state of all threads that found no memory for their own; it holds no texts.
  bool is_shared = false;
};

/// The state of the calling thread, released when the thread ends. The main thread's state, and the
/// reference to it, stay valid to the end of the process.
ThreadState& thread_state() noexcept;

}  // namespace zelk

#endif
