/// \file
/// Owned blocks of the record world: texts, and RAII for blocks and records that no list owns yet.

#ifndef ZELK_MODEL_MEMORY_HPP
#define ZELK_MODEL_MEMORY_HPP

#include <cstddef>
#include <memory>
#include <string_view>

#include "zelk/model.h"

namespace zelk {

struct BlockDeleter {
  void operator()(void* block) const noexcept { zelk_mfree(block); }
};

/// An owned text, or a record whose members own nothing yet.
template <typename T>
using OwnedBlock = std::unique_ptr<T, BlockDeleter>;
using OwnedText = OwnedBlock<char>;

/// `zelk_malloc`, but reports error 24, which raises, when the heap is exhausted.
void* allocate(std::size_t size);

/// A NUL-terminated copy of `text`; reports error 24, which raises, when the heap is exhausted.
OwnedText copy_text(std::string_view text);

/// `copy_text` of a text that may be null; null gives null.
inline OwnedText copy_of(const char* text) { return text ? copy_text(text) : nullptr; }

/// A zero-filled record for which there is no public creation function; reports error 24 likewise.
template <typename Record>
Record* create_record() {
  return static_cast<Record*>(allocate(sizeof(Record)));
}

/// Replaces the owned text in `field` by `text`.
void assign_text(char*& field, OwnedText text);

}  // namespace zelk

#endif
