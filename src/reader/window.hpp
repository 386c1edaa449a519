/// \file
/// The part of a file or text that the lexer sees: blocks of bytes in which the texts of the
/// present statement stay readable.

#ifndef ZELK_READER_WINDOW_HPP
#define ZELK_READER_WINDOW_HPP

#include <cstddef>
#include <memory>
#include <vector>

#include "reader/byte_source.hpp"

namespace zelk {

/// A window onto bytes in text mode: a carriage return directly before a line feed is dropped.
///
/// The bytes from the cursor to `limit()` are in memory, and a NUL stands behind them, so that a
/// scan needs to look at the limit only when it meets a NUL. Blocks that the window has left stay
/// readable until `forget()`: tokens borrow their text from them. A block is left when its end is
/// reached, with the token under way copied to the next one.
class Window {
 public:
  explicit Window(ByteSource source);

  char* cursor() const { return cursor_; }
  void set_cursor(char* cursor) { cursor_ = cursor; }
  const char* limit() const { return limit_; }

  /// Reads on, at the limit. The bytes from `start` (at most the limit) to the limit stay in front
  /// of the new ones, and `start` moves along with them. All other pointers into the window keep
  /// their bytes, until `forget()`.
  ///
  /// @return false at the end of the source, with nothing changed
  /// @throws std::bad_alloc
  bool extend(char*& start);

  /// Releases the blocks left behind: no token text is needed any more.
  void forget();

  /// Whether reading stopped because of a fault of the file and not at its end.
  bool failed() const { return source_.failed(); }

 private:
  struct Block {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };

  std::size_t read(char* into, std::size_t room);
  Block take_block(std::size_t size);

  ByteSource source_;
  std::vector<Block> left_;  ///< blocks that texts of the statement may still be in
  Block spare_;  ///< used again, so that no block lies between the records made meanwhile
  Block block_;  ///< the block of the cursor
  char* cursor_;
  char* limit_;
  bool holds_return_ = false;  ///< a carriage return at the end of a block, not yet delivered
};

}  // namespace zelk

#endif
