/// \file
/// How many messages and signals a text has: mends must not lose any.

#ifndef ZELK_CHECK_REPAIR_CONTENTS_HPP
#define ZELK_CHECK_REPAIR_CONTENTS_HPP

#include <cstddef>

#include "check/records/strict_reading.hpp"
#include "check/statements/document.hpp"

namespace zelk::check {

struct Contents {
  std::size_t messages = 0;
  std::size_t signals = 0;  ///< of these messages

  bool includes(const Contents& other) const {
    return messages >= other.messages && signals >= other.signals;
  }
};

Contents contents_of(const RecordsView& records);

/// Of the statements that can be read, whatever else is wrong in the text.
Contents contents_of(const Document& document);

/// Likewise; what stands there twice, word for word, counts once, as one of the two may be dropped.
Contents distinct_contents_of(const Document& document);

}  // namespace zelk::check

#endif
