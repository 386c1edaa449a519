#include "logs/columns/presence_plan.hpp"

#include <map>
#include <unordered_map>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "logs/columns/bits.hpp"

namespace zelk::logs {

namespace {

/// Goes down from the signals that are not multiplexed, and so enters no circle of multiplexors:
/// signals that it does not reach are never present.
class PresencePlanner {
 public:
  PresencePlanner(const msgblk& message, const std::vector<bool>& wanted) : wanted_(wanted) {
    for (const sigblk& signal : each<const sigblk>(message.signals)) {
      if (is_multiplexed(signal)) selected_by_[signal.mux_signal].push_back(signals_.size());
      signals_.push_back(&signal);
    }
    const std::uint32_t never = enter({Presence::kNever, Presence::kAlways, {}});
    plan_.of_signals.assign(signals_.size(), never);
  }

  PresencePlan plan() {
    for (std::size_t i = 0; i < signals_.size(); ++i)
      if (!is_multiplexed(*signals_[i])) reach(i, presence_of(i, Presence::kAlways));
    for (std::size_t i = 0; i < reached_.size(); ++i) add_dependents(reached_[i]);
    return std::move(plan_);
  }

 private:
  using Dependents = std::vector<std::size_t>;

  std::uint32_t enter(Presence presence) {
    const auto index = static_cast<std::uint32_t>(plan_.presences.size());
    const auto [entry, is_new] = indices_.try_emplace(presence, index);
    if (is_new) plan_.presences.push_back(std::move(presence));
    return entry->second;
  }

  /// @param multiplexor  of the plan, or `kAlways`
  std::optional<std::uint32_t> presence_of(std::size_t index, std::uint32_t multiplexor) {
    const sigblk& signal = *signals_[index];
    Presence presence{Presence::kNever, Presence::kAlways, {}};
    if (length_in_frame(signal) > kWordBits) return enter(std::move(presence));
    const auto placement = placement_of(signal);
    if (!placement) return std::nullopt;
    presence = {placement->end_byte, multiplexor, {}};
    if (multiplexor != Presence::kAlways) {
      for (const muxor_val_range& range : each(signal.mux_ranges))
        presence.ranges.emplace_back(range.low, range.high);
    }
    return enter(std::move(presence));
  }

  void reach(std::size_t index, std::optional<std::uint32_t> presence) {
    const bool is_multiplexor = selected_by_.contains(signals_[index]);
    if (!is_multiplexor && !wanted_[index]) return;
    plan_.of_signals[index] = presence;
    if (is_multiplexor) reached_.push_back(index);
  }

  void add_dependents(std::size_t index) {
    const std::optional<std::uint32_t> multiplexor = multiplexor_of(index);
    for (const std::size_t dependent : selected_by_[signals_[index]])
      reach(dependent, multiplexor ? presence_of(dependent, *multiplexor) : std::nullopt);
  }

  /// Odd multiplexors are left to the decoder, and with them all signals below.
  std::optional<std::uint32_t> multiplexor_of(std::size_t index) {
    const sigblk& signal = *signals_[index];
    const auto placement = placement_of(signal);
    const auto presence = plan_.of_signals[index];
    if (is_ieee(signal) || signal.length > 32 || !placement || !presence) return std::nullopt;
    plan_.multiplexors.push_back({placement->window, placement->field, *presence});
    return static_cast<std::uint32_t>(plan_.multiplexors.size() - 1);
  }

  const std::vector<bool>& wanted_;
  std::vector<const sigblk*> signals_;
  std::unordered_map<const sigblk*, Dependents> selected_by_;
  std::vector<std::size_t> reached_;  ///< multiplexors
  std::map<Presence, std::uint32_t> indices_;
  PresencePlan plan_;
};

}  // namespace

PresencePlan plan_presence(const msgblk& message, const std::vector<bool>& wanted) {
  return PresencePlanner(message, wanted).plan();
}

}  // namespace zelk::logs
