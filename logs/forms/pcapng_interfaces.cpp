#include "logs/forms/pcapng_interfaces.hpp"

#include <algorithm>

// Layout of a block: 0 type (4 bytes), 4 number of its bytes (4), 8 content, and at its end the
// number of its bytes again.
//
//   section    8 mark of the order of bytes (4)
//   interface  16 options: code (2), number of bytes (2), the bytes, filled up to a multiple of 4
//   packet     8 number of the interface in its section: 2 bytes in an old packet, else 4; simple
//              packets have none and are of the first one

namespace zelk::logs {

namespace {

constexpr std::uint32_t kSection = 0x0A0D0D0A;
constexpr std::uint32_t kInterface = 1;
constexpr std::uint32_t kOldPacket = 2;
constexpr std::uint32_t kSimplePacket = 3;
constexpr std::uint32_t kPacket = 6;

constexpr std::string_view kBigMark = "\x1A\x2B\x3C\x4D";
constexpr std::size_t kHeaderBytes = 12;  // with the first field of the content
constexpr std::size_t kMostKept = 1 << 12;
constexpr std::size_t kOptionsAt = 16;
constexpr std::size_t kEndBytes = 4;
constexpr std::uint32_t kNameOption = 2;
constexpr std::size_t kLongestName = 64;

/// A name that can stand as a word in a line of a log.
std::string as_word(std::string_view name) {
  std::string word(name.substr(0, kLongestName));
  for (char& c : word) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= ' ' || byte == 0x7F) c = '_';
  }
  return word;
}

}  // namespace

void PcapngInterfaces::feed(std::string_view bytes) {
  while (!bytes.empty() && !is_broken_) {
    if (block_.size() < kHeaderBytes) {
      bytes.remove_prefix(begin_block(bytes));
      continue;
    }
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes.size()));
    const bool is_kept = number_at(0, 4) == kInterface && block_.size() < kMostKept;
    if (is_kept) block_.append(bytes, 0, count);
    bytes.remove_prefix(count);
    left_ -= count;
    if (left_ == 0) end_block();
  }
}

/// Takes bytes up to the end of the header.
///
/// @return how many
std::size_t PcapngInterfaces::begin_block(std::string_view bytes) {
  const std::size_t count = std::min(kHeaderBytes - block_.size(), bytes.size());
  block_.append(bytes, 0, count);
  if (block_.size() < kHeaderBytes) return count;
  if (number_at(0, 4) == kSection) {
    is_big_ = block_.ends_with(kBigMark);
    first_of_section_ = names_.size();
  }
  const std::uint32_t size = number_at(4, 4);
  is_broken_ = size <= kHeaderBytes;
  left_ = size - kHeaderBytes;
  return count;
}

void PcapngInterfaces::end_block() {
  const std::uint32_t type = number_at(0, 4);
  if (type == kInterface) enter_interface();
  if (type == kPacket) packets_.push_back(first_of_section_ + number_at(8, 4));
  if (type == kOldPacket) packets_.push_back(first_of_section_ + number_at(8, 2));
  if (type == kSimplePacket) packets_.push_back(first_of_section_);
  block_.clear();
}

void PcapngInterfaces::enter_interface() {
  std::string_view name;
  const std::size_t end = block_.size() - kEndBytes;
  for (std::size_t at = kOptionsAt; at + 4 <= end;) {
    const std::uint32_t code = number_at(at, 2);
    const std::size_t size = number_at(at + 2, 2);
    at += 4;
    if (code == 0 || size > end - at) break;
    if (code == kNameOption) name = std::string_view(block_).substr(at, size);
    at += (size + 3) / 4 * 4;
  }
  names_.push_back(as_word(name));
}

std::string_view PcapngInterfaces::take_packet() {
  if (packets_.empty()) return {};
  const std::size_t index = packets_.front();
  packets_.pop_front();
  return index < names_.size() ? std::string_view(names_[index]) : std::string_view();
}

/// A number of the block.
std::uint32_t PcapngInterfaces::number_at(std::size_t at, std::size_t size) const {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t next = is_big_ ? at + i : at + size - 1 - i;
    number = number << 8 | static_cast<unsigned char>(block_[next]);
  }
  return number;
}

}  // namespace zelk::logs
