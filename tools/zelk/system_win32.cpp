#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "system.hpp"

namespace zelk::tool {

void prepare_process() { _setmode(_fileno(stdout), _O_BINARY); }

}  // namespace zelk::tool
