/// \file
/// Where in the document something is.

#ifndef ZELK_MODULES_JSON_PATH_HPP
#define ZELK_MODULES_JSON_PATH_HPP

#include <cstddef>
#include <string>
#include <string_view>

#include "common/records.hpp"

namespace zelk::modules::json {

/// A place in the document, for messages: `messages[3].signals[1].length`. Its text is built only
/// for a message. The outer places and the keys must outlive it.
class Path {
 public:
  Path() = default;  ///< the document itself
  Path(const Path& outer, std::string_view key) : outer_(&outer), key_(key) {}
  Path(const Path& outer, std::size_t index) : outer_(&outer), index_(index) {}

  std::string text() const {
    if (!outer_) return {};
    std::string text = outer_->text();
    if (key_.empty()) return text + "[" + std::to_string(index_) + "]";
    if (!text.empty()) text += '.';
    return text += key_;
  }

  /// @throws Fault with the place in front of `what`
  [[noreturn]] void fail(const std::string& what) const {
    const std::string place = text();
    throw Fault((place.empty() ? "the document" : place) + ": " + what);
  }

 private:
  const Path* outer_ = nullptr;
  std::string_view key_;  ///< empty for an element of an array
  std::size_t index_ = 0;
};

}  // namespace zelk::modules::json

#endif
