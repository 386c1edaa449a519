/// \file
/// Frames as SocketCAN hands them to a program.

#ifndef ZELK_TOOL_MONITOR_CAN_SOCKET_POSIX_HPP
#define ZELK_TOOL_MONITOR_CAN_SOCKET_POSIX_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "zelk/logs/frame.hpp"

namespace zelk::tool {

/// What came from a socket.
struct ReceivedFrame {
  ZelkFrame frame{};             ///< without its channel
  bool is_frame = false;         ///< else a message of a length that no frame has
  std::uint32_t lost_count = 0;  ///< frames that the system has dropped since the socket was
                                 ///< opened; 0 also where it does not say
};

/// Takes the next frame from a socket: CAN_RAW, or one that gives `can_frame` and `canfd_frame`
/// records as that does.
///
/// @return none when there is none now, or the system has an error, which `errno` tells
std::optional<ReceivedFrame> receive_frame(int socket);

/// A socket for all frames of an interface, error frames among them, with their times. Does not
/// wait for frames.
///
/// @throws RequestError that says why when there is no such interface, or it cannot be used
int open_can_socket(const std::string& interface_name);

}  // namespace zelk::tool

#endif
