#include "monitor/screen/screen.hpp"

namespace zelk::tool {

std::optional<std::string> show_on_screen(Session&) { return "there is no full screen on Windows"; }

}  // namespace zelk::tool
