// Hosts reach into the records by offset: the literals hold for every 64-bit system.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include "zelk/records.h"

namespace {

using testing::ElementsAre;

/// Size of `record`, then the offsets of its `members`, all in bytes.
template <typename Record, typename... Members>
std::vector<std::ptrdiff_t> layout(const Record& record, const Members&... members) {
  const auto at = [](const auto& object) { return reinterpret_cast<const char*>(&object); };
  return {static_cast<std::ptrdiff_t>(sizeof record), (at(members) - at(record))...};
}

TEST(Layout, OfEveryRecord) {
  if (sizeof(void*) != 8) GTEST_SKIP() << "offsets are those of systems with 64 bits";
  const std::tuple<msgblk, sigblk, siggroupblk, siggroup_extra, siglistblk, muxor_val_range,
                   sigtype, symblk, rxblk, val, env_var_blk, btlblk, valtable, attr_def, attr, cat,
                   catlink, filter_t>
      records{};
  const auto& [m, s, g, ge, gs, mr, st, n, rx, v, e, b, t, d, a, c, cl, f] = records;
  EXPECT_THAT(layout(m, m.name, m.id, m.dlc, m.signal_count, m.transmitter, m.signals, m.next,
                     m.comment, m.attrs, m.category, m.siggroups, m.tx_nodes),
              ElementsAre(80, 0, 8, 12, 14, 16, 24, 32, 40, 48, 56, 64, 72));
  EXPECT_THAT(
      layout(s, s.name, s.start_bit, s.length, s.flags, s.offset, s.factor, s.unit, s.minimum,
             s.maximum, s.next, s.receiver_count, s.receivers, s.comment, s.attrs, s.values,
             s.sigtype, s.value_type, s.message, s.mux_signal, s.mux_ranges),
      ElementsAre(176, 0, 8, 10, 12, 16, 24, 32, 72, 80, 88, 96, 104, 112, 120, 128, 136, 144, 152,
                  160, 168));
  EXPECT_THAT(layout(g, g.name, g.signals, g.extra, g.repetitions, g.comment, g.message, g.next),
              ElementsAre(88, 0, 40, 48, 56, 64, 72, 80));
  EXPECT_THAT(layout(st, st.name, st.length, st.flags, st.offset, st.factor, st.unit, st.minimum,
                     st.maximum, st.default_value, st.comment, st.attrs, st.valtable, st.next,
                     st.value_type),
              ElementsAre(160, 0, 34, 36, 40, 48, 56, 96, 104, 112, 120, 128, 136, 144, 152));
  EXPECT_THAT(
      layout(e, e.name, e.type, e.unit, e.minimum, e.maximum, e.initial, e.id, e.unused,
             e.access_node_count, e.access_nodes, e.access_type, e.next, e.comment, e.attrs,
             e.category, e.values, e.data_size),
      ElementsAre(160, 0, 8, 12, 48, 56, 64, 72, 80, 88, 96, 104, 112, 120, 128, 136, 144, 152));
  EXPECT_THAT(layout(d, d.object_type, d.name, d.value_type, d.minimum, d.enum_values, d.maximum,
                     d.default_value, d.next),
              ElementsAre(80, 0, 4, 40, 48, 48, 56, 64, 72));
  EXPECT_THAT(layout(n, n.name, n.next, n.comment, n.attrs, n.category),
              ElementsAre(40, 0, 8, 16, 24, 32));
  EXPECT_THAT(layout(c, c.level, c.number, c.name, c.next), ElementsAre(48, 0, 2, 4, 40));
  EXPECT_THAT(layout(b, b.baudrate, b.btr1, b.btr2, b.next), ElementsAre(16, 0, 2, 3, 8));
  EXPECT_THAT(layout(rx, rx.next, rx.node, rx.attrs), ElementsAre(24, 0, 8, 16));
  EXPECT_THAT(layout(v, v.value, v.text, v.next), ElementsAre(24, 0, 8, 16));
  EXPECT_THAT(layout(t, t.name, t.values, t.next), ElementsAre(56, 0, 40, 48));
  EXPECT_THAT(layout(a, a.def, a.value, a.next), ElementsAre(24, 0, 8, 16));
  EXPECT_THAT(layout(f, f.categories, f.nodes, f.mode), ElementsAre(24, 0, 8, 16));
  EXPECT_THAT(layout(mr, mr.low, mr.high, mr.next), ElementsAre(16, 0, 4, 8));
  EXPECT_THAT(layout(ge, ge.item, ge.next), ElementsAre(16, 0, 8));
  EXPECT_THAT(layout(gs, gs.signal, gs.next), ElementsAre(16, 0, 8));
  EXPECT_THAT(layout(cl, cl.category, cl.next), ElementsAre(16, 0, 8));
}

}  // namespace
