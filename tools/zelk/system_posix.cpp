#include <csignal>

#include "system.hpp"

namespace zelk::tool {

void prepare_process() { std::signal(SIGPIPE, SIG_IGN); }

}  // namespace zelk::tool
