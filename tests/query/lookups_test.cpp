// Lookups of objects across databases, and within one object.

#include <type_traits>

#include "manager/manager_test.hpp"
#include "support/files.hpp"
#include "support/paths.hpp"
#include "zelk/iterator.hpp"
#include "zelk/query.h"

namespace {

constexpr const char* kAll = nullptr;
constexpr const char* kNoName = nullptr;
constexpr ZelkSelection kSeventh = {7, 1};

class Lookups : public ManagerTest {
 protected:
  /// Opens, in this order, a database without objects and two that have the same ones. The last one
  /// alone answers to `kSeventh` exactly.
  void open_all(ZelkManager& manager) {
    const std::string whole = bytes_of(ZELK_SOURCE_DIR "/tests/writer/whole.dbc");
    low = open(manager, folder.write("low.dbc", whole), nullptr, 1);
    high = open(manager, folder.write("high.dbc", whole), nullptr, 2);
    empty = open(manager, folder.write("empty.dbc", "BS_:\nBU_:\n"), nullptr, 3);
    manager.AssignSelectionPattern({7, 1}, low);
  }

  /// @param get  looks a key up in the form of the other arguments
  template <bool kSelects = true, typename Key, typename Get>
  void expect_forms(const char* kind, const ZelkManager& manager, Key key, Key missing, Get get) {
    SCOPED_TRACE(kind);
    const auto* const first = get(key, high);
    const auto* const second = get(key, low);
    ASSERT_TRUE(first && second && first != second);
    if constexpr (std::is_same_v<Key, const char*>) {
      EXPECT_STREQ(first->name, key);
    }
    EXPECT_EQ(get(key, empty), nullptr);
    EXPECT_EQ(manager.Status(), 0U);
    EXPECT_EQ(get(key, static_cast<const char*>("high")), nullptr) << "a text is no handle";
    EXPECT_EQ(manager.Status(), 2U);
    EXPECT_EQ(get(key, kAll), first);
    const char* answered = "untouched";
    EXPECT_EQ(get(missing, &answered), nullptr);
    EXPECT_STREQ(answered, "untouched");
    EXPECT_EQ(get(key, &answered), first);
    EXPECT_EQ(answered, high);
    if constexpr (kSelects) {
      EXPECT_EQ(get(key, kSeventh), second);
      EXPECT_EQ(get(missing, kSeventh, &answered), nullptr);
      EXPECT_EQ(answered, high);
      EXPECT_EQ(manager.Status(), 2U);
      EXPECT_EQ(get(key, kSeventh, &answered), second);
      EXPECT_EQ(answered, low);
      EXPECT_EQ(manager.Status(), 0U);
    }
  }

  const char* empty = nullptr;
  const char* high = nullptr;
  const char* low = nullptr;
};

TEST_F(Lookups, OfEveryKindInEveryForm) {
  Manager m;
  EXPECT_FALSE(m.GetNode("A", kAll) || m.GetMessage(1UL, kAll) || m.GetBitTiming(500, kAll));
  open_all(m);
  using Name = const char*;
  using Id = unsigned long;
  using Number = unsigned short;
  expect_forms("node", m, Name("A"), Name("a"), [&m](auto... form) { return m.GetNode(form...); });
  expect_forms("message", m, Id{0x80000001}, Id{0x80000002},
               [&m](auto... form) { return m.GetMessage(form...); });
  expect_forms("message by name", m, Name("M"), Name("m"),
               [&m](auto... form) { return m.GetMessage(form...); });
  expect_forms("signal type", m, Name("Y"), Name("y"),
               [&m](auto... form) { return m.GetSignalType(form...); });
  expect_forms("message of a frame", m, Id{0x80000001}, Id{0x80000002},
               [&m](Id id, auto... form) { return m.GetJ1939Message(id, 0, form...); });
  expect_forms("variable", m, Name("D"), Name("DD"),
               [&m](auto... form) { return m.GetEnvvar(form...); });
  expect_forms("bit timing", m, Number{500}, Number{501},
               [&m](auto... form) { return m.GetBitTiming(form...); });
  expect_forms<false>("category", m, Name("Drive"), Name("Dri"),
                      [&m](auto... form) { return m.GetCategory(form...); });
  expect_forms("table", m, Name("Tab"), Name("Ta"),
               [&m](auto... form) { return m.GetValueTable(form...); });
  expect_forms<false>("definition", m, Name("RVar"), Name("rVar"),
                      [&m](auto... form) { return m.GetAttrDefinition(form...); });

  EXPECT_EQ(m.GetMessage(static_cast<Id>(0x780000001ULL), kAll), m.GetMessage("N", kAll));
  // As a group number the identifier of "N" has a destination, which no stored group has.
  EXPECT_EQ(m.GetJ1939Message(0x80000001, ZELK_J1939_PGN_IDS, kAll), nullptr);
  EXPECT_FALSE(m.GetNode(kNoName, kAll) || m.GetMessage(kNoName, high) ||
               m.GetEnvvar(kNoName, kSeventh) || m.GetAttrDefinition(kNoName, kAll));
}

TEST_F(Lookups, SelectByPattern) {
  constexpr std::uint32_t kAnyKey = 0xFFFFFFFF;
  constexpr std::uint16_t kAny = 0xFFFF;
  const struct {
    const char* what;
    ZelkSelectionPattern empty, high, low;
    ZelkSelection selection;
    const char* expected;
    unsigned status;
  } cases[] = {
      {"exact beats partial", {}, {7, kAny}, {7, 1}, {7, 1}, "low", 0},
      {"the first exact", {}, {7, 1}, {7, 1}, {7, 1}, "high", 0},
      {"exact without the object, then partial", {7, 1}, {}, {7, kAny}, {7, 1}, "low", 2},
      {"all", {}, {}, {}, {7, 1}, "high", 2},
      {"any sub key is exact for itself", {}, {7, kAny}, {7, 1}, {7, kAny}, "high", 0},
      {"all is exact for itself", {}, {7, 1}, {}, {kAnyKey, kAny}, "low", 0},
      {"any key with a sub key is no wildcard", {}, {kAnyKey, 1}, {7, 2}, {7, 1}, nullptr, 2},
      {"any sub key of another key", {}, {8, kAny}, {0, kAny}, {7, 1}, nullptr, 2}};
  Manager m;
  open_all(m);
  for (const auto& c : cases) {
    m.AssignSelectionPattern(c.empty, empty);
    m.AssignSelectionPattern(c.high, high);
    m.AssignSelectionPattern(c.low, low);
    const char* answered = nullptr;
    m.GetMessage(1UL, c.selection, &answered);
    EXPECT_EQ(m.Status(), c.status) << c.what;
    EXPECT_STREQ(answered, c.expected) << c.what;
  }
}

TEST_F(Lookups, WithinOneObject) {
  Manager m;
  open_all(m);
  const std::string name(40, 'g');
  const msgblk& message = *m.GetMessage("M", kAll);
  const siggroupblk* const group = m.GetSignalGroup(message, "G");
  ASSERT_TRUE(group);
  EXPECT_EQ(m.GetSignal(message, "T"), message.signals->next);
  EXPECT_EQ(m.GetSignal(*group, "T"), message.signals->next);
  EXPECT_FALSE(m.GetSignal(message, "t") || m.GetSignal(message, kNoName) ||
               m.GetSignalGroup(message, kNoName) || m.GetSignal(*group, kNoName));
  // Within an object the whole name counts, also one that a record holds inline.
  siggroupblk long_named = {};
  name.copy(long_named.name, 33);
  msgblk other = {};
  other.siggroups = &long_named;
  EXPECT_EQ(m.GetSignalGroup(other, name.substr(0, 33).c_str()), &long_named);
  EXPECT_EQ(m.GetSignalGroup(other, name.substr(0, 32).c_str()), nullptr);
  siglistblk leads_nowhere = {};
  long_named.signals = &leads_nowhere;
  EXPECT_EQ(m.GetSignal(long_named, "T"), nullptr);
}

}  // namespace
