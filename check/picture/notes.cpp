#include "check/picture/notes.hpp"

#include <unordered_set>

#include "base/list.hpp"

namespace zelk::check {

namespace {

constexpr std::size_t kMaxNotes = 20;

std::string note_of(const BitOverlap& overlap, const SignalMarks& marks) {
  return "Overlap: " + names_of(overlap.signals, overlap.signal_count, marks) + " share " +
         std::to_string(overlap.bit_count) + (overlap.bit_count == 1 ? " bit" : " bits") +
         " from byte " + std::to_string(overlap.first.byte) + " bit " +
         std::to_string(overlap.first.bit);
}

}  // namespace

std::string names_of(const std::vector<const sigblk*>& signals, std::size_t count,
                     const SignalMarks& marks) {
  std::string names;
  for (const sigblk* signal : signals) {
    if (!names.empty()) names += ", ";
    names += marks.at(signal).name;
  }
  if (count > signals.size()) names += " and " + std::to_string(count - signals.size()) + " more";
  return names;
}

std::vector<std::string> layout_notes(const FrameBits& frame, const Layout& layout,
                                      const SignalMarks& marks) {
  std::vector<std::string> notes;
  for (const BitOverlap& overlap : frame.overlaps()) notes.push_back(note_of(overlap, marks));
  for (const sigblk* signal : layout.signals) {
    if (signal->length > 0 && last_byte(*signal) >= frame.dlc()) {
      notes.push_back("Beyond the data length: " + marks.at(signal).name + ", " +
                      place_text(*signal));
    }
  }
  if (frame.is_cut()) notes.emplace_back("Further bytes are not drawn");
  if (frame.dlc() == 0) notes.emplace_back("The frame has no data");
  if (notes.size() > kMaxNotes) {
    const std::size_t more = notes.size() - kMaxNotes;
    notes.resize(kMaxNotes);
    notes.push_back("and " + std::to_string(more) + " more");
  }
  return notes;
}

std::vector<std::string> message_notes(const msgblk& message, const Layouts& layouts,
                                       const SignalMarks& marks) {
  std::vector<std::string> notes;
  if (!layouts.complete) notes.emplace_back("Further multiplexor values are not drawn.");
  std::unordered_set<const sigblk*> drawn;
  for (const Layout& layout : layouts.layouts)
    drawn.insert(layout.signals.begin(), layout.signals.end());
  std::size_t more = 0;
  for (const sigblk& signal : each(message.signals)) {
    if (signal.length > 0 && drawn.contains(&signal)) continue;
    if (notes.size() >= kMaxNotes && ++more) continue;
    const char* const reason = signal.length == 0 ? "it has no bits"
                               : layouts.complete ? "no multiplexor value selects it"
                                                  : "there are too many multiplexor values";
    notes.push_back("Not drawn: " + marks.at(&signal).name + ", " + reason);
  }
  if (more > 0) notes.push_back("Not drawn: " + std::to_string(more) + " more signals");
  return notes;
}

}  // namespace zelk::check
