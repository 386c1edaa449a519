#include "zelk/logs/transport.hpp"

#include <cstring>
#include <vector>

#include "logs/frames/filler.hpp"
#include "logs/transport/session_table.hpp"

namespace {

using zelk::j1939::FrameId;
using zelk::logs::Control;
using zelk::logs::ControlKind;
using zelk::logs::Pair;
using zelk::logs::Session;

/// Frames of other kinds than those that carry data have no part in the protocol.
constexpr unsigned kOtherKinds = kZelkFrameFd | kZelkFrameRemote | kZelkFrameError;

/// A frame of the protocol.
struct Packet {
  Pair pair;
  FrameId id;
  std::int64_t time;
  std::span<const unsigned char> data;
};

Packet packet_at(const ZelkFrameBlock& frames, std::size_t index) {
  const FrameId id = zelk::j1939::frame_of_id(frames.Ids()[index]);
  const std::size_t channel = frames.Channels()[index];
  const auto& names = frames.ChannelNames();
  const std::string_view name = channel < names.size() ? names[channel] : std::string_view();
  return {{name, id.source, id.group.destination}, id, frames.Times()[index], frames.Data(index)};
}

}  // namespace

struct ZelkTransport::State {
  zelk::logs::SessionTable sessions;
  ZelkTransportCounts counts;
  std::vector<std::size_t> last_packets;  // of the messages that stand at the end of the block

  void take_frame(ZelkFrameBlock& frames, std::size_t index);
  void manage(const Packet& packet);
  void announce(const Control& control, const Packet& packet);
  bool take_data(const Packet& packet);
  void end(const Pair& pair, std::uint64_t& count);
  Session* live_session(const Pair& pair, std::int64_t now);
  Session* session_of(const Pair& pair, const Control& control, std::int64_t now);
};

void ZelkTransport::State::take_frame(ZelkFrameBlock& frames, std::size_t index) {
  const Packet packet = packet_at(frames, index);
  const bool is_control = packet.id.group.key == zelk::j1939::kTransportControl;
  if (is_control) return manage(packet);
  if (!take_data(packet)) return;
  const Session& session = *sessions.find(packet.pair);
  ZelkFrameFiller(frames).append_like(index, session.id(), session.data());
  last_packets.push_back(index);
  end(packet.pair, counts.complete);
}

void ZelkTransport::State::manage(const Packet& packet) {
  if (packet.data.size() != zelk::logs::kControlBytes) {
    ++counts.stray;
    return;
  }
  const Control control = zelk::logs::control_of(packet.data.first<zelk::logs::kControlBytes>());
  const Pair answered = packet.pair.reversed();
  switch (control.kind) {
    case ControlKind::kRequestToSend:
    case ControlKind::kBroadcast:
      return announce(control, packet);
    case ControlKind::kClearToSend:
      if (session_of(answered, control, packet.time)) sessions.hear(answered, packet.time);
      return;
    case ControlKind::kEndOfMessage:
      // One that the log holds whole has ended with its last packet.
      if (session_of(answered, control, packet.time)) end(answered, counts.incomplete);
      return;
    case ControlKind::kAbort:
      for (const Pair& pair : {packet.pair, answered})
        if (session_of(pair, control, packet.time)) end(pair, counts.aborted);
      return;
  }
}

void ZelkTransport::State::announce(const Control& control, const Packet& packet) {
  if (sessions.find(packet.pair)) end(packet.pair, counts.incomplete);
  if (!is_consistent(control, packet.id)) {
    ++counts.inconsistent;
    return;
  }
  if (sessions.size() == kMostSessions) {
    sessions.close_oldest();
    ++counts.dropped;
  }
  sessions.open(packet.pair, Session(control, packet.id, packet.time));
}

/// Whether the packet completes its message.
bool ZelkTransport::State::take_data(const Packet& packet) {
  Session* const session = live_session(packet.pair, packet.time);
  if (!session) {
    ++counts.stray;
    return false;
  }
  sessions.hear(packet.pair, packet.time);
  const Session::Progress progress = session->take(packet.data);
  if (progress == Session::Progress::kContradiction) end(packet.pair, counts.inconsistent);
  return progress == Session::Progress::kComplete;
}

void ZelkTransport::State::end(const Pair& pair, std::uint64_t& count) {
  sessions.close(pair);
  ++count;
}

/// The session of a pair, unless it is too late for it.
Session* ZelkTransport::State::live_session(const Pair& pair, std::int64_t now) {
  Session* const session = sessions.find(pair);
  if (!session || !session->is_late(now)) return session;
  end(pair, counts.incomplete);
  return nullptr;
}

/// Likewise, when it is that of the group that a control frame names.
Session* ZelkTransport::State::session_of(const Pair& pair, const Control& control,
                                          std::int64_t now) {
  Session* const session = live_session(pair, now);
  return session && session->group_number() == control.group_number ? session : nullptr;
}

ZelkTransport::ZelkTransport() : state_(std::make_unique<State>()) {}

ZelkTransport::~ZelkTransport() = default;

void ZelkTransport::Assemble(ZelkFrameBlock& frames) {
  state_->last_packets.clear();
  const std::size_t count = frames.Size();
  for (std::size_t i = 0; i < count; ++i) {
    const bool is_packet =
        zelk::j1939::is_transport_packet(frames.Ids()[i]) && (frames.Flags()[i] & kOtherKinds) == 0;
    if (is_packet) state_->take_frame(frames, i);
  }
  ZelkFrameFiller(frames).move_behind(state_->last_packets);
}

void ZelkTransport::End() {
  state_->counts.incomplete += state_->sessions.size();
  state_->sessions.clear();
}

const ZelkTransportCounts& ZelkTransport::Counts() const { return state_->counts; }
