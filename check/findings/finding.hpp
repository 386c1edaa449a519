/// \file
/// What a check says about a file: one form for diagnostics, lint and the reports of repairs.

#ifndef ZELK_CHECK_FINDINGS_FINDING_HPP
#define ZELK_CHECK_FINDINGS_FINDING_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/statements/source.hpp"

namespace zelk::check {

/// In ascending order.
enum class Severity : std::uint8_t { kNote, kWarning, kError };

std::string_view name_of(Severity severity);  ///< "note", "warning", "error"
std::optional<Severity> severity_named(std::string_view name);

/// A stretch of a source. An empty one is a place between two characters.
struct Span {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;

  bool operator==(const Span&) const = default;
};

/// Another place that has to do with a finding: "first defined here".
struct RelatedPlace {
  Span span;
  std::string message;
};

/// All texts are in the encoding of the source, and without line ends.
struct Finding {
  Severity severity = Severity::kError;
  std::string_view rule{};  ///< name of the fault, mend or rule: "unknown-message"; static text
  Span span{};              ///< what is underlined
  std::string message;  ///< what is wrong: "expected ':' behind the message's name, found \"8\""
  std::string statement{};  ///< the statement it is in: "message 0x1F4 Speed"; may be empty
  std::string cause{};      ///< why, or what to do: "did you mean 1500?"; may be empty
  std::vector<RelatedPlace> related{};
};

/// The findings of one file, in the order of their places.
struct Findings {
  std::vector<Finding> list;
  /// Of all that there are, also those beyond the limit that are not in the list.
  std::uint64_t count = 0;
  Severity worst = Severity::kNote;  ///< of all

  /// @param limit  length of the list; 0 for any
  void add(Finding finding, std::uint64_t limit = 0);
};

}  // namespace zelk::check

#endif
