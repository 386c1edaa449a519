#include "input/encoded_database.hpp"

#include <fmt/format.h>

#include <optional>

#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

std::string stored(const std::string& text, Encoding encoding) {
  if (!zelk::is_utf8(text)) return text;
  if (const std::optional<std::string> bytes = zelk::from_utf8(text, encoding)) return *bytes;
  throw RequestError(fmt::format(
      "{} has characters that are not in Windows-1252, the encoding of the file", in_quotes(text)));
}

}  // namespace zelk::tool
