#include <cstring>
#include <exception>
#include <span>
#include <string>
#include <utility>

#include "logs/forms/capture_file_posix.hpp"
#include "logs/forms/form.hpp"
#include "logs/frames/filler.hpp"

namespace zelk::logs {

namespace {

constexpr std::size_t kChunkBytes = 1 << 18;

/// In front of each packet of a chunk.
struct Record {
  std::int64_t time;
  std::uint32_t length;     // of the packet, before the capture cut it
  std::uint16_t size;       // of its bytes, which follow
  std::uint16_t name_size;  // of the interface's name, which follows them
};

void append(std::string& bytes, const CapturedPacket& packet) {
  const Record record{packet.time, static_cast<std::uint32_t>(packet.packet.length),
                      static_cast<std::uint16_t>(packet.packet.bytes.size()),
                      static_cast<std::uint16_t>(packet.interface.size())};
  char header[sizeof record];
  std::memcpy(header, &record, sizeof record);
  bytes.append(header, sizeof header);
  bytes.append(reinterpret_cast<const char*>(packet.packet.bytes.data()), record.size);
  bytes += packet.interface;
}

/// Packets have no characters to show.
std::string in_digits(std::span<const unsigned char> bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string digits;
  for (const unsigned char byte : bytes) {
    digits += kDigits[byte >> 4];
    digits += kDigits[byte & 0xF];
  }
  return digits;
}

/// Parses one block of packets.
class BlockParser {
 public:
  BlockParser(LinkType type, ZelkLogBlock& block, std::uint64_t first_number)
      : type_(type), block_(block), filler_(block.frames), number_(first_number) {}

  void parse(std::string_view bytes) {
    for (; !bytes.empty(); ++number_, ++block_.counts.lines) {
      Record record{};
      std::memcpy(&record, bytes.data(), sizeof record);
      bytes.remove_prefix(sizeof record);
      const auto* const begin = reinterpret_cast<const unsigned char*>(bytes.data());
      bytes.remove_prefix(record.size);
      parse_record(record.time, {{begin, record.size}, record.length},
                   bytes.substr(0, record.name_size));
      bytes.remove_prefix(record.name_size);
    }
    block_.counts.frames = block_.frames.Size();
  }

 private:
  void parse_record(std::int64_t time, const Packet& packet, std::string_view name) {
    PacketFrame frame;
    const LineKind kind = parse_packet(type_, packet, frame);
    if (kind == LineKind::kMalformed) note_malformed(block_, number_, in_digits(packet.bytes));
    if (kind != LineKind::kFrame) return;
    unsigned char* const room = filler_.room();
    std::memset(room, 0, frame.length + ZelkFrameBlock::kSlack);
    std::ranges::copy(frame.data, room);
    filler_.put(time, frame.id, frame.flags, channel_of(frame.interface, name), frame.length);
  }

  /// @param interface  number that the packet has; more exact than the name, which may be "any"
  std::uint16_t channel_of(std::uint32_t interface, std::string_view name) {
    const bool is_as_before = has_channel_ && interface == interface_ && name == name_;
    if (is_as_before) return channel_;
    has_channel_ = true;
    interface_ = interface;
    name_ = name;
    return channel_ = block_.frames.ChannelIndex(interface ? std::to_string(interface) : name_);
  }

  LinkType type_;
  ZelkLogBlock& block_;
  ZelkFrameFiller filler_;
  std::uint64_t number_;
  bool has_channel_ = false;
  std::uint32_t interface_ = 0;  // of the frame before, its name, and its channel
  std::string name_;
  std::uint16_t channel_ = 0;
};

class Captures : public Form {
 public:
  explicit Captures(LogInput input)
      : file_(std::move(input.stream), std::move(input.name)), stop_(input.options.stop) {}

  bool next(Chunk& chunk) override {
    if (fault_) std::rethrow_exception(fault_);
    chunk.bytes.clear();
    chunk.first_line = number_;
    while (append_next(chunk.bytes) && file_.has_packet() && chunk.bytes.size() < kChunkBytes) {
    }
    if (chunk.bytes.empty() && fault_) std::rethrow_exception(fault_);
    return !chunk.bytes.empty();
  }

  void parse(Chunk& chunk, ZelkLogBlock& block) const override {
    BlockParser(file_.link_type(), block, chunk.first_line).parse(chunk.bytes);
  }

 private:
  /// False at the end, and for a fault, which is kept until the packets in front of it were given
  /// out.
  bool append_next(std::string& bytes) {
    CapturedPacket packet{};
    try {
      if (!file_.next(packet)) return false;
    } catch (const ZelkLogError&) {
      // A capture that is stopped ends anywhere.
      if (!stop_ || !*stop_) fault_ = std::current_exception();
      return false;
    }
    append(bytes, packet);
    ++number_;
    return true;
  }

  CaptureFile file_;
  const std::atomic<bool>* stop_;
  std::uint64_t number_ = 1;  // of the next packet
  std::exception_ptr fault_;
};

}  // namespace

std::unique_ptr<Form> open_capture(LogInput input) {
  return std::make_unique<Captures>(std::move(input));
}

}  // namespace zelk::logs
