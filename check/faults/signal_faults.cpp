#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "base/characters.hpp"
#include "base/signal_bits.hpp"
#include "check/faults/analysis.hpp"

namespace zelk::check {

namespace {

constexpr std::uint32_t kLengthMax = 65535;  // in bits
constexpr std::uint32_t kOrderMax = 4;

/// "M", "m3", "m3M" as the reader takes them apart: any letter, then a number as far as there is
/// one, then the letter again.
struct Indicator {
  char letter;  ///< a capital, or "_"
  bool is_multiplexor;
  bool is_multiplexed;
  bool is_number;  ///< what stands between the letters is a number of 32 bits
  bool is_too_large;
};

Indicator read_indicator(std::string_view text) {
  Indicator result{to_upper(text.front()), to_upper(text.back()) == to_upper(text.front()), false,
                   true, false};
  if (result.is_multiplexor) text.remove_suffix(1);
  result.is_multiplexed = text.size() > 1;
  if (!result.is_multiplexed) return result;
  std::uint32_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, value);
  result.is_number = error == std::errc{} && stop == end;
  result.is_too_large = error == std::errc::result_out_of_range;
  return result;
}

class SignalFaults {
 public:
  explicit SignalFaults(const Analysis& analysis) : in_(analysis) {}

  void find() {
    multiplexor_of_.resize(count(), kNoStatement);
    flags_.resize(count(), 0);
    read_ranges();
    for (std::uint32_t i = 0; i < count(); ++i) find(i);
    end_message();
    find_circles();
  }

 private:
  enum Flag : std::uint8_t { kMultiplexor = 1, kMultiplexed = 2, kHasRanges = 4 };

  std::uint32_t count() const { return static_cast<std::uint32_t>(in_.document.statements.size()); }

  void find(std::uint32_t index) {
    const Statement& statement = in_.statement(index);
    if (statement.kind == Word::kMessage) {
      end_message();
      message_ = index;
      if (statement.is_readable) check_message(index);
    }
    if (!statement.is_readable) return;
    if (statement.kind == Word::kSignalType) check_segments(index);
    if (statement.kind != Word::kSignal) return;
    check_segments(index);
    check_indicator(index);
    signals_.push_back(index);
    const bool is_doubled = statement.owner != kNoStatement && first_of_name(index) != index;
    if (is_doubled)
      add_accepted(FaultKind::kDoubledSignal, index, Role::kSignal).related = first_of_name(index);
  }

  std::uint32_t first_of_name(std::uint32_t signal) const {
    const Statement& statement = in_.statement(signal);
    return in_.names.signal(statement.owner, in_.document.text_of(statement, Role::kSignal));
  }

  Fault& add_accepted(FaultKind kind, std::uint32_t index, Role role) const {
    Fault& fault = in_.add(kind, index, *in_.document.find(in_.statement(index), role));
    fault.is_accepted = true;
    return fault;
  }

  void check_message(std::uint32_t index) const {
    const auto id = whole_value(in_.document, in_.statement(index), Role::kMessageId);
    if (!id) return;
    const std::uint32_t first = in_.names.message(*id);
    if (first != index)
      add_accepted(FaultKind::kDoubledMessage, index, Role::kMessageId).related = first;
  }

  // --- Segments ---

  /// A segment without an order has its position, 1 or 2, for one. Two are cut at 65535 bits.
  void check_segments(std::uint32_t index) const {
    std::uint64_t length = 0;
    std::uint32_t segments = 0;
    const bool is_type = in_.statement(index).kind == Word::kSignalType;
    for (const Token& token : in_.document.tokens_of(in_.statement(index))) {
      if (token.role != Role::kLength && token.role != Role::kOrder) continue;
      const std::uint32_t value = whole_value(in_.document, token).value_or(1);
      if (token.role == Role::kLength) {
        length += value;
        ++segments;
      }
      const bool is_wrong = token.role == Role::kOrder
                                ? value > kOrderMax
                                : segments > 2 || length > kLengthMax || (value == 0 && !is_type);
      if (!is_wrong) continue;
      in_.add(FaultKind::kSegments, index, token);
      return;
    }
  }

  // --- Indicators ---

  void check_indicator(std::uint32_t index) {
    const Token* const token = in_.document.find(in_.statement(index), Role::kIndicator);
    if (!token) return;
    const Indicator indicator = read_indicator(in_.document.text_of(*token));
    if (letter_ == 0) letter_ = indicator.letter;
    const bool is_refused =
        indicator.letter == '_' || indicator.letter != letter_ || indicator.is_too_large;
    if (is_refused || !indicator.is_number)
      in_.add(FaultKind::kIndicator, index, *token).is_accepted = !is_refused;
    if (indicator.is_multiplexor) flags_[index] |= kMultiplexor;
    if (indicator.is_multiplexed) flags_[index] |= kMultiplexed;
  }

  // --- Multiplexors ---

  /// What "SG_MUL_VAL_" says; the last statement for a signal counts.
  void read_ranges() {
    for (std::uint32_t i = 0; i < count(); ++i) {
      const Statement& statement = in_.statement(i);
      if (statement.kind != Word::kMultiplexorRanges || !statement.is_readable) continue;
      const auto id = whole_value(in_.document, statement, Role::kMessageRef);
      const std::uint32_t message = id ? in_.names.message(*id) : kNoStatement;
      if (message == kNoStatement) continue;
      const std::uint32_t signal =
          in_.names.signal(message, in_.document.text_of(statement, Role::kSignalRef));
      const std::uint32_t multiplexor =
          in_.names.signal(message, in_.document.text_of(statement, Role::kMultiplexorRef));
      if (signal == kNoStatement || multiplexor == kNoStatement) continue;
      multiplexor_of_[signal] = multiplexor;
      flags_[signal] |= kHasRanges;
      flags_[multiplexor] |= kMultiplexor;
    }
  }

  void end_message() {
    std::uint32_t multiplexor = kNoStatement;
    std::uint32_t marked = 0;  // by an indicator
    std::uint32_t all = 0;
    for (const std::uint32_t signal : signals_) {
      if ((flags_[signal] & kMultiplexor) == 0) continue;
      ++all;
      if (!is_marked(signal)) continue;
      ++marked;
      multiplexor = signal;
    }
    is_extended_ |= all > 1;
    if (marked == 1) give(multiplexor);
    warn();
    signals_.clear();
    letter_ = 0;
  }

  bool is_marked(std::uint32_t signal) const {
    const std::string_view text = in_.document.text_of(in_.statement(signal), Role::kIndicator);
    return !text.empty() && read_indicator(text).is_multiplexor;
  }

  /// The only multiplexor that indicators name selects all signals with a value.
  void give(std::uint32_t multiplexor) {
    for (const std::uint32_t signal : signals_) {
      if ((flags_[signal] & kMultiplexed) != 0 && multiplexor_of_[signal] == kNoStatement)
        multiplexor_of_[signal] = multiplexor;
    }
  }

  /// A signal with a value and nothing that selects it; one for a message.
  void warn() const {
    const auto lost = std::ranges::find_if(signals_, [this](std::uint32_t signal) {
      return (flags_[signal] & kMultiplexed) != 0 && multiplexor_of_[signal] == kNoStatement;
    });
    if (lost != signals_.end())
      add_accepted(FaultKind::kMultiplexors, *lost, Role::kIndicator).related = message_;
  }

  /// Walks up from every multiplexor, past each signal once. The reader looks for circles only when
  /// a message has several multiplexors.
  void find_circles() {
    std::vector<std::uint32_t> passed_from(count(), kNoStatement);
    for (std::uint32_t start = 0; start < count(); ++start) {
      if ((flags_[start] & kMultiplexor) == 0) continue;
      std::uint32_t at = start;
      for (; at != kNoStatement && passed_from[at] == kNoStatement; at = multiplexor_of_[at])
        passed_from[at] = start;
      if (at == kNoStatement || passed_from[at] != start) continue;
      Fault& fault =
          in_.add(FaultKind::kCircle, at, *in_.document.find(in_.statement(at), Role::kSignal));
      fault.related = multiplexor_of_[at];
      fault.is_accepted = !is_extended_;
    }
  }

  const Analysis& in_;
  std::vector<std::uint32_t> multiplexor_of_;  ///< by statement of a signal
  std::vector<std::uint8_t> flags_;            ///< likewise
  bool is_extended_ = false;                   ///< a message has several multiplexors
  // Of the message under way.
  std::uint32_t message_ = kNoStatement;
  std::vector<std::uint32_t> signals_;
  char letter_ = 0;
};

}  // namespace

void find_signal_faults(const Analysis& analysis) { SignalFaults(analysis).find(); }

}  // namespace zelk::check
