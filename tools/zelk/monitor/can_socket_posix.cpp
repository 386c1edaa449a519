#if __has_include(<linux/can/raw.h>)

#include "monitor/can_socket_posix.hpp"

#include <fmt/format.h>
#include <linux/can.h>
#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "files/descriptor_posix.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

[[noreturn]] void fail(const std::string& interface_name, const std::string& why) {
  throw RequestError(fmt::format("{}: {}", escaped(interface_name), why));
}

std::string reason() { return std::generic_category().message(errno); }

void set_option(const std::string& name, int socket, int level, int option, int value) {
  if (setsockopt(socket, level, option, &value, sizeof value) != 0)
    fail(name, "cannot be received from: " + reason());
}

/// A `can_frame` and the beginning of a `canfd_frame` have one layout.
static_assert(offsetof(can_frame, data) == offsetof(canfd_frame, data));

ZelkFrame frame_of(const canfd_frame& received, bool is_fd, bool is_own) {
  ZelkFrame frame;
  const std::uint32_t id = received.can_id;
  const bool is_error = (id & CAN_ERR_FLAG) != 0;
  const bool is_extended = !is_error && (id & CAN_EFF_FLAG) != 0;
  frame.id = id & (is_error ? CAN_ERR_MASK : is_extended ? CAN_EFF_MASK : CAN_SFF_MASK);
  if (is_extended) frame.id |= ZELK_ID_EXTENDED;
  unsigned flags = is_own ? kZelkFrameSent : 0;
  if (is_error) flags |= kZelkFrameError;
  if (!is_error && !is_fd && (id & CAN_RTR_FLAG)) flags |= kZelkFrameRemote;
  if (is_fd) flags |= kZelkFrameFd;
  if (is_fd && (received.flags & CANFD_BRS)) flags |= kZelkFrameBrs;
  if (is_fd && (received.flags & CANFD_ESI)) flags |= kZelkFrameEsi;
  frame.flags = static_cast<std::uint16_t>(flags);
  const std::size_t most = is_fd ? CANFD_MAX_DLEN : CAN_MAX_DLEN;
  frame.length = static_cast<std::uint16_t>(std::min<std::size_t>(received.len, most));
  if (!(flags & kZelkFrameRemote)) std::copy_n(received.data, frame.length, frame.data.data());
  return frame;
}

/// Takes what the system says beside the frame.
void take_details(msghdr& message, ReceivedFrame& received) {
  for (cmsghdr* part = CMSG_FIRSTHDR(&message); part; part = CMSG_NXTHDR(&message, part)) {
    if (part->cmsg_level != SOL_SOCKET) continue;
    if (part->cmsg_type == SO_RXQ_OVFL)
      std::memcpy(&received.lost_count, CMSG_DATA(part), sizeof received.lost_count);
    if (part->cmsg_type != SO_TIMESTAMPNS) continue;
    timespec time = {};
    std::memcpy(&time, CMSG_DATA(part), sizeof time);
    received.frame.time = std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
  }
}

}  // namespace

std::optional<ReceivedFrame> receive_frame(int socket) {
  canfd_frame content = {};
  iovec place = {&content, sizeof content};
  alignas(cmsghdr) std::array<char, 256> details;
  msghdr message = {};
  message.msg_iov = &place;
  message.msg_iovlen = 1;
  message.msg_control = details.data();
  message.msg_controllen = details.size();
  const ssize_t size = recvmsg(socket, &message, MSG_DONTWAIT);
  if (size <= 0) return std::nullopt;
  ReceivedFrame received;
  received.is_frame = size == CAN_MTU || size == CANFD_MTU;
  if (!received.is_frame) return received;
  received.frame = frame_of(content, size == CANFD_MTU, (message.msg_flags & MSG_DONTROUTE) != 0);
  take_details(message, received);
  return received;
}

int open_can_socket(const std::string& interface_name) {
  if (interface_name.empty() || interface_name.size() >= IFNAMSIZ)
    fail(interface_name, "no name of an interface");
  files::Descriptor opened(::socket(PF_CAN, SOCK_RAW | SOCK_CLOEXEC, CAN_RAW));
  if (!opened) fail(interface_name, "this system has no SocketCAN: " + reason());
  const int socket = opened.get();
  ifreq request = {};
  interface_name.copy(request.ifr_name, IFNAMSIZ - 1);
  if (ioctl(socket, SIOCGIFINDEX, &request) != 0) fail(interface_name, "no such interface");
  sockaddr_can address = {};
  address.can_family = AF_CAN;
  address.can_ifindex = request.ifr_ifindex;
  if (ioctl(socket, SIOCGIFFLAGS, &request) == 0 && !(request.ifr_flags & IFF_UP)) {
    fail(interface_name,
         fmt::format("the interface is down; \"ip link set {} up\" starts it", interface_name));
  }
  set_option(interface_name, socket, SOL_CAN_RAW, CAN_RAW_FD_FRAMES, 1);
  set_option(interface_name, socket, SOL_CAN_RAW, CAN_RAW_ERR_FILTER, CAN_ERR_MASK);
  set_option(interface_name, socket, SOL_SOCKET, SO_TIMESTAMPNS, 1);
  set_option(interface_name, socket, SOL_SOCKET, SO_RXQ_OVFL, 1);
  constexpr int kBufferBytes = 8 << 20;  // for some seconds of a busy bus
  setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &kBufferBytes, sizeof kBufferBytes);
  if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    fail(interface_name, "no CAN interface: " + reason());
  opened.release();
  return socket;
}

}  // namespace zelk::tool

#endif
