/// \file
/// A database that frames are looked up in.

#ifndef ZELK_LOGS_LOOKUP_NAMED_DATABASE_HPP
#define ZELK_LOGS_LOOKUP_NAMED_DATABASE_HPP

#include <string>
#include <string_view>

#include "base/encoded_database.hpp"
#include "base/text_view.hpp"

namespace zelk::logs {

/// The same one may be added several times, for several channels.
struct NamedDatabase {
  EncodedDatabase content;
  std::string name;
  std::string channel;  ///< empty for all

  bool counts_for(std::string_view of) const { return channel.empty() || channel == of; }
  /// A text of its records, in UTF-8.
  std::string text_of(const char* text) const { return to_utf8(view(text), content.encoding); }
};

}  // namespace zelk::logs

#endif
