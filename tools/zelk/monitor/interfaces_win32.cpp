#include "input/lookup.hpp"
#include "monitor/frame_source.hpp"
#include "term/text.hpp"

namespace zelk::tool {

std::unique_ptr<FrameSource> open_interfaces(const std::vector<std::string>& interfaces) {
  throw RequestError(escaped(interfaces.front()) +
                     ": interfaces are read by SocketCAN, which only Linux has");
}

}  // namespace zelk::tool
