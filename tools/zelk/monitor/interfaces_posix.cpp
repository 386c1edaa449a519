#include <poll.h>

#include <cerrno>
#include <system_error>

#include "files/descriptor_posix.hpp"
#include "input/lookup.hpp"
#include "monitor/can_socket_posix.hpp"
#include "monitor/frame_source.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

#if __has_include(<linux/can/raw.h>)

#include <fmt/format.h>

namespace zelk::tool {

namespace {

/// An interface that goes down is waited for; one that is taken away, is not.
class Interfaces : public FrameSource {
 public:
  explicit Interfaces(const std::vector<std::string>& names) : FrameSource(joined(names)) {
    for (const std::string& name : names)
      interfaces_.push_back({name, files::Descriptor(open_can_socket(name))});
  }

  bool next(ZelkLogBlock& block) override {
    block.frames.Clear();
    block.malformed.clear();
    block.counts = {};
    constexpr int kStopInterval = 50;  // milliseconds
    std::vector<pollfd> waited;
    for (const Interface& each : interfaces_) waited.push_back({each.socket.get(), POLLIN, 0});
    poll(waited.data(), static_cast<nfds_t>(waited.size()), kStopInterval);
    for (std::size_t i = 0; i < waited.size(); ++i)
      if (waited[i].revents != 0) receive(interfaces_[i], block.frames);
    block.counts.frames = block.frames.Size();
    std::erase_if(interfaces_, [](const Interface& each) { return each.is_gone; });
    return !interfaces_.empty() && !NotedStop::is_requested();
  }

 private:
  struct Interface {
    std::string name;
    files::Descriptor socket;
    std::uint32_t lost_count = 0;
    bool is_gone = false;
  };

  static std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
  }

  void receive(Interface& from, ZelkFrameBlock& frames) {
    constexpr std::size_t kMostAtOnce = 1024;  // so that each interface gets its turn
    const std::uint16_t channel = frames.ChannelIndex(from.name);
    for (std::size_t i = 0; i < kMostAtOnce; ++i) {
      std::optional<ReceivedFrame> received = receive_frame(from.socket.get());
      if (!received) return note_fault(from);
      if (!received->is_frame) continue;
      note_lost(from, received->lost_count);
      received->frame.channel = channel;
      frames.Append(received->frame);
    }
  }

  void note_fault(Interface& from) {
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) return;
    from.is_gone = errno != ENETDOWN;
    const std::string why = from.is_gone ? std::generic_category().message(errno)
                                         : "the interface is down, and is waited for";
    give_notice(fmt::format("{}: {}", escaped(from.name), why));
  }

  void note_lost(Interface& from, std::uint32_t count) {
    if (count == 0 || count == from.lost_count) return;
    give_notice(fmt::format("{}: {} lost, which came faster than they were read",
                            escaped(from.name), counted(count - from.lost_count, "frame")));
    from.lost_count = count;
  }

  std::vector<Interface> interfaces_;
};

}  // namespace

std::unique_ptr<FrameSource> open_interfaces(const std::vector<std::string>& interfaces) {
  return std::make_unique<Interfaces>(interfaces);
}

}  // namespace zelk::tool

#else

namespace zelk::tool {

std::unique_ptr<FrameSource> open_interfaces(const std::vector<std::string>& interfaces) {
  throw RequestError(escaped(interfaces.front()) +
                     ": interfaces are read by SocketCAN, which only Linux has");
}

}  // namespace zelk::tool

#endif
