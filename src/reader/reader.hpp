/// \file
/// One read of a DBC file: everything it needs, gone when it ends.

#ifndef ZELK_READER_READER_HPP
#define ZELK_READER_READER_HPP

#include "reader/attribute_actions.hpp"
#include "reader/frame_actions.hpp"
#include "reader/message_actions.hpp"
#include "reader/object_actions.hpp"
#include "reader/read_context.hpp"
#include "reader/text_actions.hpp"

namespace zelk {

/// The parser's actions call the members by subject. Records that no list of the model owns yet are
/// owned by one of them, so that an exception loses nothing.
class Reader {
 public:
  /// @param target  the caller's lists; they must outlive the reader
  /// @param source  an open file, or a text
  Reader(const ReadTarget& target, ByteSource source) : context(target, std::move(source)) {}
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  /// Reads the source to its end.
  ///
  /// @return 0, or the result of a parse that stopped without a report
  /// @throws ZelkException for every reported error
  /// @throws std::bad_alloc
  int run();

  /// The file is accepted: applies what waited for its end and checks the whole.
  void accept();

  ReadContext context;
  FrameActions frame{context};
  MessageActions messages{context};
  ObjectActions objects{context};
  AttributeActions attributes{context};
  TextActions texts{context};
};

}  // namespace zelk

#endif
