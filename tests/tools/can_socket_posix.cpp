#if __has_include(<linux/can/raw.h>)

#include "monitor/can_socket_posix.hpp"

#include <gtest/gtest.h>
#include <linux/can.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "support/paths.hpp"
#include "tools/run_tool.hpp"
#include "zelk/logs/candump.hpp"

namespace {

constexpr std::uint32_t kExtended = CAN_EFF_FLAG;

/// A pair of sockets that keeps the bounds of messages, as those of SocketCAN do.
struct Pair {
  Pair() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0); }
  ~Pair() {
    close(ends[0]);
    close(ends[1]);
  }
  int ends[2] = {};
};

TEST(CanSocket, GivesTheFramesOfTheSystem) {
  const struct {
    std::uint32_t id;
    unsigned length;
    unsigned flags;
    bool is_fd;
    const char* text;  // its identifier and data begin with 01 02 03 ...
    unsigned kinds;
  } cases[] = {
      {0x123, 2, 0, false, "123#0102", 0},
      {0x123, 0, 0, false, "123#", 0},
      {0x123 | kExtended, 8, 0, false, "00000123#0102030405060708", 0},
      {0x7FF | CAN_RTR_FLAG, 4, 0, false, "7FF#R4", kZelkFrameRemote},
      {CAN_ERR_FLAG | 0x80, 8, 0, false, "20000080#0102030405060708", kZelkFrameError},
      {0x123, 12, CANFD_BRS, true, "123##10102030405060708090A0B0C", kZelkFrameFd | kZelkFrameBrs},
      {0x123, 1, CANFD_ESI, true, "123##201", kZelkFrameFd | kZelkFrameEsi},
      {0x123, 200, 0, false, "123#0102030405060708", 0},  // no length of a frame
  };
  const Pair pair;
  for (const auto& c : cases) {
    canfd_frame sent = {};
    sent.can_id = c.id;
    sent.len = static_cast<__u8>(c.length);
    sent.flags = static_cast<__u8>(c.flags);
    for (unsigned i = 0; i < CANFD_MAX_DLEN; ++i) sent.data[i] = static_cast<__u8>(i + 1);
    const std::size_t size = c.is_fd ? CANFD_MTU : CAN_MTU;
    ASSERT_EQ(send(pair.ends[0], &sent, size, 0), static_cast<ssize_t>(size));
    const auto received = zelk::tool::receive_frame(pair.ends[1]);
    ASSERT_TRUE(received && received->is_frame) << c.text;
    EXPECT_EQ(ZelkFrameText(received->frame), c.text);
    EXPECT_EQ(received->frame.flags, c.kinds) << c.text;
  }
  EXPECT_FALSE(zelk::tool::receive_frame(pair.ends[1]));
  ASSERT_EQ(send(pair.ends[0], "abc", 3, 0), 3);
  EXPECT_FALSE(zelk::tool::receive_frame(pair.ends[1])->is_frame);
}

// Needs "ip link add vcan0 type vcan" and "ip link set vcan0 up".
TEST(CanSocket, ReceivesFromAnInterface) {
  if (if_nametoindex("vcan0") == 0) GTEST_SKIP() << "there is no interface vcan0";
  const int receiver = zelk::tool::open_can_socket("vcan0");
  const int sender = zelk::tool::open_can_socket("vcan0");
  canfd_frame frame = {};
  frame.can_id = 0x321;
  frame.len = 12;
  ASSERT_EQ(write(sender, &frame, CANFD_MTU), static_cast<ssize_t>(CANFD_MTU));
  const auto received = zelk::tool::receive_frame(receiver);
  ASSERT_TRUE(received && received->is_frame);
  EXPECT_EQ(received->frame.length, 12);
  EXPECT_NE(received->frame.time, kZelkNoTime);
  close(receiver);
  close(sender);
}

}  // namespace

#endif
