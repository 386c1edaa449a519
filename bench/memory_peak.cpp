// Linux: /proc/self/status tells the peak, and writing 5 to /proc/self/clear_refs resets it.

#include "memory_peak.hpp"

#include <malloc.h>

#include <fstream>
#include <string>

namespace zelk::bench {
namespace {

/// The value, in bytes, of a line such as "VmHWM:     1234 kB".
std::size_t status_value(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == key && status >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

}  // namespace

std::size_t reset_memory_peak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  return status_value("VmRSS:");
}

std::size_t memory_peak() { return status_value("VmHWM:"); }

}  // namespace zelk::bench
