#include "zelk/logs/transport.hpp"

#include <vector>

#include "logs/frames/filler.hpp"
#include "logs/transport/session_table.hpp"

namespace {

using zelk::j1939::FrameId;
using zelk::logs::Control;
using zelk::logs::ControlKind;
using zelk::logs::Pair;
using zelk::logs::Session;
using zelk::logs::SessionTable;

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
  SessionTable sessions;
  ZelkTransportCounts counts;
  std::vector<std::size_t> last_packets;  // of the messages that stand at the end of the block

  void take_frame(ZelkFrameBlock& frames, std::size_t index);
  void manage(const Packet& packet);
  void announce(const Control& control, const Packet& packet);
  SessionTable::Place take_data(const Packet& packet);
  void end(SessionTable::Place place, std::uint64_t& count);
  SessionTable::Place live_session(const Pair& pair, std::int64_t now);
  SessionTable::Place session_of(const Pair& pair, const Control& control, std::int64_t now);
};

void ZelkTransport::State::take_frame(ZelkFrameBlock& frames, std::size_t index) {
  const Packet packet = packet_at(frames, index);
  const bool is_control = packet.id.group.key == zelk::j1939::kTransportControl;
  if (is_control) return manage(packet);
  const SessionTable::Place complete = take_data(packet);
  if (complete == sessions.none()) return;
  ZelkFrameFiller(frames).append_like(index, complete->session.id(), complete->session.data());
  last_packets.push_back(index);
  end(complete, counts.complete);
}

void ZelkTransport::State::manage(const Packet& packet) {
  if (packet.data.size() != zelk::logs::kControlBytes) {
    ++counts.stray;
    return;
  }
  const Control control = zelk::logs::control_of(packet.data.first<zelk::logs::kControlBytes>());
  const Pair answered = packet.pair.reversed();
  const auto for_session_of = [&](const Pair& pair, const auto& act) {
    const SessionTable::Place place = session_of(pair, control, packet.time);
    if (place != sessions.none()) act(place);
  };
  switch (control.kind) {
    case ControlKind::kRequestToSend:
    case ControlKind::kBroadcast:
      return announce(control, packet);
    case ControlKind::kClearToSend:
      return for_session_of(answered, [&](auto place) { sessions.hear(place, packet.time); });
    case ControlKind::kEndOfMessage:
      // One that the log holds whole has ended with its last packet.
      return for_session_of(answered, [&](auto place) { end(place, counts.incomplete); });
    case ControlKind::kAbort:
      for (const Pair& pair : {packet.pair, answered})
        for_session_of(pair, [&](auto place) { end(place, counts.aborted); });
      return;
  }
}

void ZelkTransport::State::announce(const Control& control, const Packet& packet) {
  const SessionTable::Place former = sessions.find(packet.pair);
  if (former != sessions.none()) end(former, counts.incomplete);
  if (!is_consistent(control, packet.id)) {
    ++counts.inconsistent;
    return;
  }
  if (sessions.size() == kMostSessions) end(sessions.oldest(), counts.dropped);
  sessions.open(packet.pair, Session(control, packet.id, packet.time));
}

/// The session that the packet completes, or none.
SessionTable::Place ZelkTransport::State::take_data(const Packet& packet) {
  const SessionTable::Place place = live_session(packet.pair, packet.time);
  if (place == sessions.none()) {
    ++counts.stray;
    return place;
  }
  sessions.hear(place, packet.time);
  const Session::Progress progress = place->session.take(packet.data);
  if (progress == Session::Progress::kComplete) return place;
  if (progress == Session::Progress::kContradiction) end(place, counts.inconsistent);
  return sessions.none();
}

void ZelkTransport::State::end(SessionTable::Place place, std::uint64_t& count) {
  sessions.close(place);
  ++count;
}

/// The session of a pair, unless it is too late for it.
SessionTable::Place ZelkTransport::State::live_session(const Pair& pair, std::int64_t now) {
  const SessionTable::Place place = sessions.find(pair);
  if (place == sessions.none() || !place->session.is_late(now)) return place;
  end(place, counts.incomplete);
  return sessions.none();
}

/// Likewise, when it is that of the group that a control frame names.
SessionTable::Place ZelkTransport::State::session_of(const Pair& pair, const Control& control,
                                                     std::int64_t now) {
  const SessionTable::Place place = live_session(pair, now);
  if (place == sessions.none()) return place;
  return place->session.group_number() == control.group_number ? place : sessions.none();
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
