#include "check/repair/last_resort.hpp"

#include <algorithm>
#include <string>
#include <string_view>

namespace zelk::check {

namespace {

class Search {
 public:
  explicit Search(const Document& document) : document_(document) {}

  /// @param end  a guess: with the statements in front of it the text is refused
  /// @return the first statement with which it is refused; `kNoStatement` when the sections are at
  /// fault
  std::uint32_t first_refused(std::uint32_t end) const {
    const std::uint32_t least = behind_sections();
    const auto all = static_cast<std::uint32_t>(document_.statements.size());
    if (end < all && is_accepted(end)) end = all;
    if (end <= least) return kNoStatement;
    std::uint32_t begin = end;  // the text in front of it is accepted, once that is found
    for (std::uint32_t step = 1;; step *= 2) {
      begin = begin - least > step ? begin - step : least;
      if (is_accepted(begin)) break;
      if (begin == least) return kNoStatement;
      end = begin;
    }
    while (end - begin > 1) {
      const std::uint32_t middle = begin + (end - begin) / 2;
      (is_accepted(middle) ? begin : end) = middle;
    }
    return begin;
  }

 private:
  std::uint32_t behind_sections() const {
    const auto is_section = [](const Statement& each) {
      return place_of(each.kind) <= place_of(Word::kNodes);
    };
    const auto first = std::ranges::find_if_not(document_.statements, is_section);
    return static_cast<std::uint32_t>(first - document_.statements.begin());
  }

  /// Whether the reader takes the text in front of a statement.
  bool is_accepted(std::uint32_t end) const {
    const std::uint32_t offset = document_.begin_of(document_.statements[end]);
    // A name or a comment must not end with the text.
    return judge(std::string(document_.source.text(0, offset)) + '\n').is_accepted;
  }

  const Document& document_;
};

/// The reader's reason, without the line, which is that of a text mended up to here.
std::string_view reason_of(const Verdict& verdict) {
  const std::string_view message = verdict.message;
  return message.substr(0, message.rfind(", line "));
}

}  // namespace

bool drop_refused(Mender& mender, const Verdict& verdict) {
  if (!mender.is_on(FaultKind::kRefused)) return false;
  const Document& document = mender.document;
  const std::uint32_t line = document.source.begin_of_line(verdict.line_feeds + 1);
  const auto behind =
      std::ranges::lower_bound(document.statements, line, {},
                               [&](const Statement& each) { return document.begin_of(each); });
  const auto end = static_cast<std::uint32_t>(behind - document.statements.begin());
  const std::uint32_t found = Search(document).first_refused(end);
  if (found == kNoStatement) return false;
  const Word kind = mender.statement(found).kind;
  if (kind == Word::kMessage || kind == Word::kSignal) return false;
  mender.drop(FaultKind::kRefused, found,
              "the reader refuses it: " + std::string(reason_of(verdict)));
  return true;
}

}  // namespace zelk::check
