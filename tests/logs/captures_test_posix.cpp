#include <gmock/gmock.h>

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/memory_stream.hpp"

namespace zelk::logs {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;

/// Numbers in one order of bytes.
struct Order {
  bool is_big;

  std::string number(std::uint32_t value, int size = 4) const {
    std::string bytes;
    for (int i = 0; i < size; ++i)
      bytes += static_cast<char>(value >> (8 * (is_big ? size - 1 - i : i)));
    return bytes;
  }
};

constexpr Order kLittle{false};
constexpr Order kBig{true};
constexpr std::uint32_t kMicroseconds = 0xA1B2C3D4;
constexpr std::uint32_t kNanoseconds = 0xA1B23C4D;

std::string pcap(Order order, std::uint32_t magic, std::uint32_t link_type) {
  return order.number(magic) + order.number(2, 2) + order.number(4, 2) + order.number(0) +
         order.number(0) + order.number(65535) + order.number(link_type);
}

std::string packet(Order order, std::uint32_t seconds, std::uint32_t fraction,
                   const std::string& bytes, std::size_t cut = 0) {
  const auto length = static_cast<std::uint32_t>(bytes.size());
  const auto kept = static_cast<std::uint32_t>(bytes.size() - cut);
  return order.number(seconds) + order.number(fraction) + order.number(kept) +
         order.number(length) + bytes.substr(0, kept);
}

/// A frame of SocketCAN, with its data in `bytes` in all.
std::string frame(const std::string& id, int length, int flags, const std::string& data,
                  std::size_t bytes = 0) {
  std::string frame = id + static_cast<char>(length) + static_cast<char>(flags) + "\0\0"s + data;
  if (frame.size() < 8 + bytes) frame.resize(8 + bytes);
  return frame;
}

std::string block(std::uint32_t type, const std::string& body) {
  const auto size = static_cast<std::uint32_t>(body.size() + 12);
  return kLittle.number(type) + kLittle.number(size) + body + kLittle.number(size);
}

/// @param decimals  that times have, of seconds
std::string interface_block(std::uint32_t link_type, const std::string& options = "",
                            std::uint32_t decimals = 9) {
  return block(1, kLittle.number(link_type, 2) + "\0\0\0\0\0\0"s + options + "\x9\0\1\0"s +
                      kLittle.number(decimals) + "\0\0\0\0"s);
}

const std::string kSection =
    block(0x0A0D0D0A, "\x4D\x3C\x2B\x1A\1\0\0\0"s + std::string(8, '\xFF'));

std::string enhanced_packet(std::uint32_t interface, const std::string& bytes,
                            std::uint64_t time = 77) {
  const auto size = static_cast<std::uint32_t>(bytes.size());
  return block(6, kLittle.number(interface) +
                      kLittle.number(static_cast<std::uint32_t>(time >> 32)) +
                      kLittle.number(static_cast<std::uint32_t>(time)) + kLittle.number(size) +
                      kLittle.number(size) + bytes);
}

std::vector<std::string> parsed(const std::string& capture, std::size_t most = 1 << 20) {
  try {
    return parsed(*open_capture(memory_input(capture, most)));
  } catch (const ZelkLogError& error) {
    return {error.what()};
  }
}

const std::string kId123 = "\0\0\1\x23"s;

TEST(Captures, ReadsFramesOfSocketCan) {
  const struct {
    std::string bytes;
    std::string result;
  } cases[] = {
      {frame(kId123, 2, 0, "\xAB\xCD", 8), "5000006000 123 0 ABCD"},
      {frame("\x92\x34\x56\x78", 0, 0, "", 8), "5000006000 92345678 0"},
      {frame("\x40\0\1\x23"s, 3, 0, "", 8), "5000006000 123 8 000000"},
      {frame("\x20\0\0\4"s, 8, 0, "\0\1"s, 8), "5000006000 80000004 16 0001000000000000"},
      {frame(kId123, 9, 4 | 1, "123456789", 64), "5000006000 123 67 313233343536373839"},
      {frame(kId123, 1, 2, "1", 64), "5000006000 123 5 31"},  // a capture without marks of CAN FD
      {frame(kId123, 9, 0, "123456789"), "1: 0000012309000000313233343536373839"},
      {frame("\0\0\x08\0"s, 0, 0, ""), "1: 0000080000000000"},
      {"\0\0\1"s, "1: 000001"},
  };
  for (const auto& each : cases) {
    for (const Order order : {kLittle, kBig}) {
      EXPECT_THAT(parsed(pcap(order, kMicroseconds, 227) + packet(order, 5, 6, each.bytes)),
                  ElementsAre(each.result));
    }
  }
  EXPECT_THAT(parsed(pcap(kLittle, kNanoseconds, 227) + packet(kLittle, 5, 6, cases[0].bytes)),
              ElementsAre("5000000006 123 0 ABCD"));
  // Cut behind the data, and in its midst.
  const std::string cut = frame(kId123, 2, 0, "12", 8);
  EXPECT_THAT(parsed(pcap(kLittle, kMicroseconds, 227) + packet(kLittle, 5, 6, cut, 6) +
                     packet(kLittle, 5, 6, cut, 7)),
              ElementsAre("5000006000 123 0 3132", "2: 000001230200000031"));
}

TEST(Captures, ReadsFramesBehindHeadersOfInterfaces) {
  const std::string address(8, '\0');
  for (const Order order : {kLittle, kBig}) {
    const std::string can = frame(order.number(0x123), 1, 0, "1", 8);
    const std::string fd = frame(order.number(0x123), 1, 1, "1", 64);
    EXPECT_THAT(parsed(pcap(order, kMicroseconds, 113) +
                       packet(order, 0, 1, "\0\4\1\x18\0\0"s + address + "\0\x0C"s + can) +
                       packet(order, 0, 2, "\0\0\1\x18\0\0"s + address + "\0\x0D"s + fd) +
                       packet(order, 0, 3, "\0\0\0\1\0\0"s + address + "\x08\0"s + can) +
                       packet(order, 0, 4, "\0\0\0\1\0\0"s)),
                ElementsAre("1000 123 32 31", "2000 123 3 31", "4: 000000010000"));
    EXPECT_THAT(parsed(pcap(order, kMicroseconds, 276) +
                       packet(order, 0, 1, "\0\x0C\0\0\0\0\0\3\1\x18\4\0"s + address + can) +
                       packet(order, 0, 2, "\0\x0D\0\0\0\0\0\7\1\x18\0\0"s + address + fd) +
                       packet(order, 0, 3, "\0\x0C\0\0\0\0\0\3\1\x18\4\0"s + address + "\0\0\0"s)),
                ElementsAre("1000 123 32 31 3", "2000 123 3 31 7", HasSubstr("3: 000C0000")));
    EXPECT_THAT(parsed(pcap(order, kMicroseconds, 276) + packet(order, 0, 1, "\0\x0C\0"s)),
                ElementsAre("1: 000C00"));
  }
}

TEST(Captures, GivesWhatStandsInFrontOfAFault) {
  const std::string can = frame(kId123, 1, 0, "1", 8);
  const std::string capture =
      pcap(kLittle, kMicroseconds, 227) + packet(kLittle, 0, 1, can) + packet(kLittle, 0, 2, can);
  for (std::size_t size = 4; size < capture.size(); ++size) {
    const std::size_t frames = size < 24 ? 0 : (size - 24) / 32;
    const bool is_whole = size >= 24 && (size - 24) % 32 == 0;
    for (const std::size_t most : {1, 1000}) {
      const std::vector<std::string> result = parsed(capture.substr(0, size), most);
      ASSERT_EQ(result.size(), frames + !is_whole) << size;
      if (is_whole) continue;
      EXPECT_THAT(result.back(), HasSubstr("log: truncated"));
    }
  }
  EXPECT_THAT(parsed(pcap(kLittle, kMicroseconds, 1) + packet(kLittle, 0, 1, can)),
              ElementsAre("log: the capture is not one of SocketCAN, but of Ethernet"));
  EXPECT_THAT(parsed(pcap(kLittle, kMicroseconds, 4000)),
              ElementsAre("log: the capture is not one of SocketCAN, but of link type 4000"));
}

// What the bytes are read from fails beneath the library that reads captures.
TEST(Captures, GivesWhatStandsInFrontOfDamage) {
  const std::string capture =
      pcap(kLittle, kMicroseconds, 227) + packet(kLittle, 0, 1, frame(kId123, 1, 0, "1", 8));
  for (const std::size_t size : {std::size_t{20}, capture.size(), capture.size() - 1}) {
    const auto length = static_cast<std::uint32_t>(size);
    const std::string packed = "\x1F\x8B\x08\0\0\0\0\0\0\x03\0"s + kLittle.number(length, 2) +
                               kLittle.number(~length, 2) + capture.substr(0, size) + "\x07";
    auto stream = decompressed(std::make_unique<MemoryStream>(packed), "log");
    std::vector<std::string> result;
    try {
      result =
          parsed(*open_capture({std::make_unique<PeekedStream>(std::move(stream)), "log", {}}));
    } catch (const ZelkLogError& error) {
      result = {error.what()};
    }
    std::vector<std::string> expected = {"log: the data compressed with gzip is damaged"};
    if (size == capture.size()) expected.insert(expected.begin(), "1000 123 0 31");
    EXPECT_EQ(result, expected) << size;
  }
}

TEST(Captures, EndsWithoutAFaultWhenItIsStopped) {
  const std::atomic<bool> stop = true;
  LogInput input = memory_input(pcap(kLittle, kMicroseconds, 227) + "\0\0"s);
  input.options.stop = &stop;
  EXPECT_THAT(parsed(*open_capture(std::move(input))), testing::IsEmpty());
}

TEST(Captures, ReadsPcapng) {
  const std::string can = frame(kId123, 1, 0, "1", 8);
  const std::string simple = block(3, kLittle.number(16) + can);
  const std::string capture = kSection + interface_block(227, "\2\0\4\0can0"s) +
                              interface_block(227, "\2\0\5\0a b\xC3\xA4\0\0\0"s) +
                              enhanced_packet(0, can) + enhanced_packet(1, can) + simple +
                              kSection + interface_block(227) + enhanced_packet(0, can);
  for (const std::size_t most : {1, 1000}) {
    EXPECT_THAT(parsed(capture, most), ElementsAre("77 123 0 31 can0", "77 123 0 31 a_b\xC3\xA4",
                                                   "0 123 0 31 can0", "77 123 0 31"));
  }
  EXPECT_THAT(
      parsed(kSection + interface_block(227) + enhanced_packet(0, can) + interface_block(1)),
      ElementsAre("77 123 0 31", HasSubstr("log: an interface has a type 1 different")));
}

TEST(Captures, ReadsPcapngOfBigMachines) {
  const auto big = [](std::uint32_t type, const std::string& body) {
    const auto size = kBig.number(static_cast<std::uint32_t>(body.size() + 12));
    return kBig.number(type) + size + body + size;
  };
  const auto option = [](std::uint32_t code, std::uint32_t size, const std::string& value) {
    return kBig.number(code, 2) + kBig.number(size, 2) + value;
  };
  const std::string can = frame(kId123, 1, 0, "1", 8);
  const std::string name(100, 'n');
  const std::string head = kBig.number(227, 2) + std::string(6, '\0') + option(9, 1, "\x9\0\0\0"s);
  const std::string sizes = kBig.number(16) + kBig.number(16);
  const std::string time = kBig.number(0) + kBig.number(77);
  const std::string capture = big(0x0A0D0D0A, kBig.number(0x1A2B3C4D) + kBig.number(1, 2) +
                                                  kBig.number(0, 2) + std::string(8, '\xFF')) +
                              big(1, head + option(2, 100, name)) +
                              big(1, head + option(2, 4, "a\x7F b")) +
                              big(2, kBig.number(1, 2) + kBig.number(0, 2) + time + sizes + can) +
                              big(6, kBig.number(0) + time + sizes + can);
  EXPECT_THAT(parsed(capture),
              ElementsAre("77 123 0 31 a__b", "77 123 0 31 " + name.substr(0, 64)));
}

TEST(Captures, LeaveOutTimesBeyondTheRange) {
  const std::string can = frame(kId123, 1, 0, "1", 8);
  const std::string seconds = kSection + interface_block(227, "", 0);
  for (const std::uint64_t time :
       std::initializer_list<std::uint64_t>{9223372037, UINT64_MAX / 2, UINT64_MAX - 9223372037u})
    EXPECT_THAT(parsed(seconds + enhanced_packet(0, can, time)), ElementsAre("- 123 0 31")) << time;
  EXPECT_THAT(parsed(seconds + enhanced_packet(0, can, 9223372026)),
              ElementsAre("9223372026000000000 123 0 31"));
}

}  // namespace
}  // namespace zelk::logs
