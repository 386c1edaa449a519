#include "monitor/plain.hpp"

namespace zelk::tool {

namespace {

void print_notices(Session& session) {
  for (const std::string& notice : session.take_notices()) print_error(notice);
}

}  // namespace

void show_plain(Session& session, std::chrono::nanoseconds every, StateTable& table, Output& out) {
  bool has_ended = false;
  while (!has_ended) {
    has_ended = session.wait(every);
    print_notices(session);
    session.look([&](BusState& state) { table.write(state); });
    out.flush();
  }
}

}  // namespace zelk::tool
