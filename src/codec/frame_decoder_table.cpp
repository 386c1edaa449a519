#include <unordered_map>
#include <vector>

#include "base/hash_table.hpp"
#include "base/list.hpp"
#include "zelk/frame_decoder.hpp"

/// Places among the decoders by identifier. They take half the memory of pointers, so that the
/// slots of a large database stay in the caches.
struct ZelkFrameDecoderTable::Entries {
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  explicit Entries(const msgblk* messages) : places(zelk::each(messages).size()) {
    for (const msgblk& message : zelk::each(messages)) {
      const auto place = static_cast<std::uint32_t>(decoders.size());
      places.enter(message.id, place);
      if (places.find(message.id) != place) hidden.emplace(&message, place);
      decoders.emplace_back(message);
    }
  }

  std::vector<ZelkFrameDecoder> decoders;
  zelk::HashTable<std::uint32_t, std::uint32_t, kNone> places;
  /// Of messages behind another with their identifier.
  std::unordered_map<const msgblk*, std::uint32_t> hidden;
};

ZelkFrameDecoderTable::ZelkFrameDecoderTable(const msgblk* messages)
    : entries_(std::make_unique<const Entries>(messages)) {}
ZelkFrameDecoderTable::ZelkFrameDecoderTable(ZelkFrameDecoderTable&&) noexcept = default;
ZelkFrameDecoderTable& ZelkFrameDecoderTable::operator=(ZelkFrameDecoderTable&&) noexcept = default;
ZelkFrameDecoderTable::~ZelkFrameDecoderTable() = default;

const ZelkFrameDecoder* ZelkFrameDecoderTable::Find(std::uint32_t id) const {
  const std::uint32_t place = entries_->places.find(id);
  return place == Entries::kNone ? nullptr : &entries_->decoders[place];
}

const ZelkFrameDecoder* ZelkFrameDecoderTable::Find(const msgblk& message) const {
  const ZelkFrameDecoder* const first = Find(message.id);
  if (first && &first->Message() == &message) return first;
  const auto found = entries_->hidden.find(&message);
  return found == entries_->hidden.end() ? nullptr : &entries_->decoders[found->second];
}
