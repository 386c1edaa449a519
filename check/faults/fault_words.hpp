/// \file
/// What is said about a fault.

#ifndef ZELK_CHECK_FAULTS_FAULT_WORDS_HPP
#define ZELK_CHECK_FAULTS_FAULT_WORDS_HPP

#include "check/faults/suggestions.hpp"
#include "check/findings/finding.hpp"

namespace zelk::check {

/// The place that is underlined: of something missing, directly behind the token before it.
Span span_of(const Document& document, const Fault& fault);

/// Puts faults into words.
class FaultWords {
 public:
  /// @param document, names  must outlive the object
  FaultWords(const Document& document, const Names& names)
      : document_(document), suggestions_(document, names) {}

  Finding finding(const Fault& fault);

 private:
  std::string message(const Fault& fault) const;
  std::string message_of_characters(const Fault& fault) const;
  std::string message_of_reference(const Fault& fault) const;
  std::string message_of_value(const Fault& fault) const;
  std::string message_of_signal(const Fault& fault) const;
  std::string cause(const Fault& fault);
  std::string cause_of_stray(const Fault& fault) const;
  std::string cause_of_order(const Fault& fault) const;
  std::string cause_of_number(const Fault& fault) const;
  std::string cause_of_value(const Fault& fault);
  std::string related_words(const Fault& fault) const;

  std::string found(const Fault& fault) const;
  const Token& token(const Fault& fault) const { return document_.tokens[fault.token]; }
  std::string text(const Fault& fault) const;
  std::string content(const Fault& fault) const;
  Word kind_of(std::uint32_t statement) const { return document_.statements[statement].kind; }
  std::string line_of(std::uint32_t statement) const;
  Span keyword_span(std::uint32_t statement) const;

  const Document& document_;
  Suggestions suggestions_;
};

}  // namespace zelk::check

#endif
