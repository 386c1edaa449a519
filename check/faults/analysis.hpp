/// \file
/// What the searches for faults share. Each search goes over the whole document once.

#ifndef ZELK_CHECK_FAULTS_ANALYSIS_HPP
#define ZELK_CHECK_FAULTS_ANALYSIS_HPP

#include <atomic>
#include <cstddef>
#include <vector>

#include "check/statements/document.hpp"
#include "check/statements/names.hpp"

namespace zelk::check {

struct Analysis {
  const Document& document;
  const Names& names;
  std::vector<Fault>& faults;

  const Statement& statement(std::uint32_t index) const { return document.statements[index]; }

  std::uint32_t index_of(const Token& token) const {
    return static_cast<std::uint32_t>(&token - document.tokens.data());
  }

  /// A fault at one token.
  Fault& add(FaultKind kind, std::uint32_t statement, const Token& token) const {
    const std::uint32_t index = index_of(token);
    return faults.emplace_back(Fault{kind, statement, index, index + 1});
  }

  /// A fault at the keyword of a statement.
  Fault& add(FaultKind kind, std::uint32_t statement) const {
    return add(kind, statement, document.tokens[document.statements[statement].first]);
  }
};

/// Statements that stand at the wrong place, or are missing or doubled.
void find_order_faults(const Analysis& analysis);

/// References to what no statement introduces. Threads with the same `next`, and faults of their
/// own, share the search.
///
/// @param next  the stretch of statements that is searched next, at first 0
void find_reference_faults(const Analysis& analysis, std::atomic<std::size_t>& next);

/// Values of attributes against their definitions.
void find_attribute_faults(const Analysis& analysis);

/// Numbers and texts beyond what their statements allow.
void find_value_faults(const Analysis& analysis);

/// Indicators, segments, multiplexors, and what is introduced twice.
void find_signal_faults(const Analysis& analysis);

}  // namespace zelk::check

#endif
