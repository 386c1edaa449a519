// Walks over the objects of one database, of all, and of one object.

#include "zelk/iterator.hpp"

#include <ranges>

#include "manager/manager_test.hpp"
#include "support/paths.hpp"
#include "zelk/predicates.hpp"

static_assert(std::ranges::input_range<ZelkIterator<const msgblk>>);
template <typename A, typename B>
constexpr bool kAreComparable = requires(ZelkIterator<A> a, ZelkIterator<B> b) {
  a == b;
};
template <typename A>
constexpr bool kHasOrder = requires(ZelkIterator<A> a) {
  a < a;
};
static_assert(kAreComparable<msgblk, const msgblk> && kAreComparable<attr, attr>);
static_assert(!kAreComparable<msgblk, symblk> && !kHasOrder<msgblk>, "not by their truth either");

namespace {

constexpr const char* kAll = nullptr;

template <typename Named>
std::string word(const Named& record) {
  return record.name;
}
std::string word(const btlblk& timing) { return std::to_string(timing.baudrate); }
std::string word(const siglistblk& member) { return member.signal->name; }
std::string word(const rxblk& link) { return link.node ? link.node->name : "-"; }
std::string word(const catlink& link) { return link.category ? link.category->name : "-"; }
std::string word(const val& description) { return description.text; }
std::string word(const attr& value) {
  return value.def->name + std::to_string(static_cast<int>(value.value.number));
}

/// "database:object " for each; without the name of a database where there is none.
template <typename Iterator>
std::string walk(Iterator iterator) {
  std::string text;
  for (; iterator; ++iterator) {
    if (iterator.DatabaseName()) text += std::string(iterator.DatabaseName()) + ":";
    text += word(**iterator) + " ";
  }
  return text;
}

std::string messages(const std::string& names) {
  std::string text = "BS_:\nBU_:\n";
  unsigned id = 0;
  for (const char name : names) {
    text += "BO_ " + std::to_string(++id) + " " + name + ": 8 Ostrel__XXX\n\n";
  }
  return text;
}

/// Refuses everything in one database, and tells what it is asked.
struct Elsewhere : ZelkPredicate<const msgblk> {
  bool operator()(const msgblk* message, ZelkManager& manager, const char* db) override {
    asked += std::string(db) + ":" + message->name + " ";
    return manager.IsDatabaseName(db) && db != refused;
  }
  const char* refused = nullptr;
  std::string asked;
};

class Iterators : public ManagerTest {
 protected:
  const char* open_messages(ZelkManager& manager, const char* name, const std::string& content,
                            unsigned priority) {
    return open(manager, folder.write(std::string(name) + ".dbc", messages(content)), nullptr,
                priority);
  }
};

TEST_F(Iterators, GoThroughAllDatabasesInOrder) {
  Manager m;
  EXPECT_FALSE(m.GetMessageIterator(kAll));
  open_messages(m, "without_last", "", 0);
  const char* const c = open_messages(m, "c", "Z", 1);
  open_messages(m, "without_middle", "", 2);
  const char* const a = open_messages(m, "a", "XY", 3);
  open_messages(m, "without_first", "", 4);
  EXPECT_EQ(walk(m.GetMessageIterator(kAll)), "a:X a:Y c:Z ");
  EXPECT_EQ(walk(m.GetMessageIterator("a")), "") << "a text is no handle";
  EXPECT_EQ(m.GetNodeIterator(kAll).DatabaseName(), nullptr);
  EXPECT_EQ(walk(m.GetDatabaseNameIterator()), "without_first a without_middle c without_last ");
  std::string by_range;
  for (const msgblk* message : m.GetMessageIterator(kAll)) by_range += message->name;
  EXPECT_EQ(by_range, "XYZ");

  auto it = m.GetMessageIterator(kAll);
  const auto before = it++;
  EXPECT_STREQ((*it)->name, "Y");
  EXPECT_STREQ((*++it)->name, "Z");
  EXPECT_EQ(it.DatabaseName(), c);
  EXPECT_EQ(before.DatabaseName(), a);
  const ZelkIterator<msgblk> other(m, &ZelkDatabase::Walk<msgblk>, a);
  EXPECT_TRUE(before == other && before != it && it == it);
  for (int steps = 0; steps < 3; ++steps) EXPECT_EQ(*++it, nullptr) << "it stays at the end";
}

TEST_F(Iterators, StopAtWhatAPredicateAccepts) {
  Manager m;
  open_messages(m, "c", "Z", 1);
  const char* const b = open_messages(m, "b", "U", 2);
  const char* const a = open_messages(m, "a", "XY", 3);
  const auto of = [&m](Elsewhere& predicate, const char* db) {
    return walk(ZelkIterator(m, &ZelkDatabase::Walk<const msgblk>, predicate, db));
  };
  Elsewhere not_a, not_b;
  not_a.refused = a;
  not_b.refused = b;
  EXPECT_EQ(of(not_a, kAll), "b:U c:Z ");
  EXPECT_EQ(not_a.asked, "a:X a:Y b:U c:Z ");
  EXPECT_EQ(of(not_b, kAll), "a:X a:Y c:Z ");
  const msgblk* const start = m.GetMessage("Y", a);
  EXPECT_EQ(walk(ZelkIterator(m, start, not_b, a)), "a:Y ") << "it never changes database";
  EXPECT_EQ(walk(ZelkIterator(m, static_cast<const msgblk*>(nullptr), not_b, a)), "");
}

TEST_F(Iterators, OfEveryKind) {
  Manager m;
  const char* const db = open(m, ZELK_SOURCE_DIR "/tests/writer/whole.dbc", "a");
  for (const char* const which : {kAll, db}) {
    EXPECT_EQ(walk(m.GetNodeIterator(which)), "a:A a:B ");
    EXPECT_EQ(walk(m.GetMessageIterator(which)), "a:M a:N ");
    EXPECT_EQ(walk(m.GetEnvvarIterator(which)), "a:V a:D ");
    EXPECT_EQ(walk(m.GetBitTimingIterator(which)), "a:500 ");
    EXPECT_EQ(walk(m.GetAttrDefinitionIterator(which)),
              "a:Net a:Nod a:Msg a:Sig a:Var a:Typ a:RSig a:RMsg a:RVar ");
    EXPECT_EQ(walk(m.GetCategoryIterator(which)), "a:Drive ");
    EXPECT_EQ(walk(m.GetSignalTypeIterator(which)), "a:Y ");
    EXPECT_EQ(walk(m.GetValueTableIterator(which)), "a:Tab ");
    EXPECT_EQ(walk(m.GetAttributeIterator(which)), "a:Net7 ");
    EXPECT_EQ(walk(m.GetFilterCategoryIterator(which)), "a:Drive a:- ");
    EXPECT_EQ(walk(m.GetFilterNodeIterator(which)), "a:A a:- ");
    EXPECT_EQ(m.NodeCount(which) * m.MessageCount(which) * m.AttrDefinitionCount(which), 36U);
  }

  // Of what one object owns.
  ZelkDatabase& database = *m.GetDatabase(db);
  const msgblk& message = *database.messages;
  const sigblk& first = *message.signals;
  EXPECT_EQ(walk(m.GetMultiplexorSignalIterator(message)), "S ");
  EXPECT_EQ(walk(m.GetSubsignalIterator(*message.siggroups)), "S T ");
  EXPECT_EQ(walk(m.GetTransmitterIterator(message)), "A B ");
  EXPECT_EQ(walk(m.GetAccessNodeIterator(*database.env_vars)), "A B ");
  EXPECT_EQ(walk(m.GetValueDescriptionIterator(first)), "off on ");
  EXPECT_EQ(walk(m.GetAttributeIterator(first)), "Sig255 ");
  EXPECT_EQ(walk(m.GetAttributeIterator(*first.next->receivers->next)), "RSig3 ");
  EXPECT_EQ(m.SignalCount(message) * m.SignalGroupCount(message), 2U);
  EXPECT_EQ(m.AttributeCount(*first.next), 0U);
  EXPECT_EQ(walk(m.GetValueDescriptionIterator(*database.env_vars)), "low ");
  EXPECT_EQ(walk(m.GetValueDescriptionIterator(*database.value_tables)), "one ");
  EXPECT_EQ(walk(m.GetAttributeIterator(*database.nodes)), "Nod0 ");
  EXPECT_EQ(walk(m.GetAttributeIterator(message)), "Msg1 ");
  EXPECT_STREQ((*m.GetAttributeIterator(*database.env_vars))->def->name, "Var");
  EXPECT_STREQ((*m.GetAttributeIterator(*database.signal_types))->def->name, "Typ");
  EXPECT_EQ(m.AttributeCount(*database.nodes) + m.AttributeCount(message) * 10 +
                m.AttributeCount(*database.env_vars) * 100,
            111U);
  ZelkFilterCategoryIterator category(m, db);
  EXPECT_EQ(&category.Category(), database.categories);
  EXPECT_EQ(&(++category, category).Category(), &ZelkNoneFilterCategory());
  ZelkConstFilterNodeIterator filter_node(m, kAll);
  EXPECT_STREQ((++filter_node, filter_node).Node().name, "Ostrel__XXX");
}

}  // namespace
