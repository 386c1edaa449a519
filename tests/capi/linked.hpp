#ifndef ZELK_TESTS_CAPI_LINKED_HPP
#define ZELK_TESTS_CAPI_LINKED_HPP

#include <vector>

/// Links `records`, which the test holds and which are not empty, in order; returns the head.
template <typename Record>
Record* linked(std::vector<Record>& records) {
  for (std::size_t i = 1; i < records.size(); ++i) records[i - 1].next = &records[i];
  return records.data();
}
inline char* text(const char* literal) { return const_cast<char*>(literal); }

#endif
