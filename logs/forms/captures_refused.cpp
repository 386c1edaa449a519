#include "logs/forms/form.hpp"

namespace zelk::logs {

std::unique_ptr<Form> open_capture(LogInput input) {
  throw ZelkLogError(input.name + ": captures cannot be read: this build has no libpcap");
}

}  // namespace zelk::logs
