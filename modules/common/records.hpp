/// \file
/// Building records, and reporting faults.

#ifndef ZELK_MODULES_COMMON_RECORDS_HPP
#define ZELK_MODULES_COMMON_RECORDS_HPP

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/list.hpp"
#include "base/text_view.hpp"
#include "zelk/module.h"

namespace zelk::modules {

/// The reason for which a file cannot be read or written.
class Fault : public std::runtime_error {
 public:
  /// @param line  of the file, from 1; 0: none
  explicit Fault(const std::string& text, std::int32_t line = 0)
      : std::runtime_error(text), line_(line) {}
  std::int32_t line() const { return line_; }

 private:
  std::int32_t line_;
};

/// A zero-filled block of the library's heap.
/// @throws std::bad_alloc
void* allocated(std::size_t size);

/// Appends a new record to a list.
///
/// @return the record, zero-filled and owned by the list
/// @throws std::bad_alloc
template <typename Record>
Record& append_new(ListTail<Record>& tail) {
  auto* const record = static_cast<Record*>(allocated(sizeof(Record)));
  tail.append(record);
  return *record;
}

// No text has a NUL character, which no record can hold: who reads a file refuses it there.

/// Replaces an owned text of a record.
/// @throws std::bad_alloc
void assign_text(char*& field, std::string_view text);

/// Puts a text into an inline name or unit.
/// @throws Fault for a longer one than `ZELK_INLINE_NAME_MAX` characters, with `what` in front
template <std::size_t kSize>
void assign_inline(char (&field)[kSize], std::string_view text, std::string_view what);

// --- Implementation ---

/// @throws Fault
void check_inline(std::string_view text, std::string_view what);

template <std::size_t kSize>
void assign_inline(char (&field)[kSize], std::string_view text, std::string_view what) {
  static_assert(kSize > ZELK_INLINE_NAME_MAX);
  check_inline(text, what);
  field[text.copy(field, text.size())] = '\0';
}

}  // namespace zelk::modules

#endif
