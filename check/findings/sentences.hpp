/// \file
/// Words for statements in the sentences of findings.

#ifndef ZELK_CHECK_FINDINGS_SENTENCES_HPP
#define ZELK_CHECK_FINDINGS_SENTENCES_HPP

#include <cstdint>
#include <string>
#include <string_view>

#include "check/statements/document.hpp"

namespace zelk::check {

/// What a statement is about: "comment of signal Speed of message 1492".
std::string describe(const Document& document, const Statement& statement);

/// A stretch of text between backquotes, on one line; long ones are cut, and end in "...".
std::string shown(std::string_view text);

/// "1 comma", "3 commas".
std::string counted(std::uint64_t count, std::string_view noun);

}  // namespace zelk::check

#endif
