#include "support/failing_calloc.hpp"

namespace {

bool armed = false;
std::size_t calls_before = 0;

}  // namespace

FailingCalloc::FailingCalloc(std::size_t n) { armed = true, calls_before = n; }
FailingCalloc::~FailingCalloc() { armed = false; }
bool FailingCalloc::has_failed() const { return !armed; }

// The linker's --wrap=calloc leads calls of calloc to the second, which reaches the heap by the
// first.
extern "C" void* __real_calloc(std::size_t count, std::size_t size);

extern "C" void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (!armed || calls_before-- > 0) return __real_calloc(count, size);
  armed = false;
  return nullptr;
}
