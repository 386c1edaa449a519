// Deletions, and edits for which memory runs out.

#include <functional>

#include "edit/edited.hpp"
#include "support/failing.hpp"
#include "zelk/errors.h"
#include "zelk/model.h"

namespace {

using Deletions = ManagerTest;
using EditsWithoutMemory = ManagerTest;

/// Deletes all records of a kind.
template <typename Record>
std::function<void(Edited&)> all(ZelkIterator<Record> (ZelkWriteManager::*walk)(const char*) const,
                                 void (ZelkWriteManager::*remove)(Record&, const char*)) {
  return [=](Edited& e) {
    for (auto record = (e.*walk)(e.db); record;) (e.*remove)(**record++, nullptr);
  };
}

void delete_signals(Edited& e) {
  for (auto message = e.GetMessageIterator(e.db); message; ++message) {
    for (auto signal = e.GetSignalIterator(**message); signal;) e.DeleteSignal(**signal++);
  }
}

// Nothing refers to what was deleted, in whatever order.
TEST_F(Deletions, OfEverything) {
  const std::vector<std::string> left = {"BS_:", "BU_:", "CM_ \"the", "network\";",
                                         "FILTER 3 CAT_ 0 BU_ \"<<none>>\" ;"};
  using W = ZelkWriteManager;
  const std::function<void(Edited&)> deletions[] = {
      all(&W::GetNodeIterator, &W::DeleteNode),
      all(&W::GetCategoryIterator, &W::DeleteCategory),
      all(&W::GetAttrDefinitionIterator, &W::DeleteAttrDefinition),
      all(&W::GetSignalTypeIterator, &W::DeleteSignalType),
      all(&W::GetValueTableIterator, &W::DeleteValueTable),
      delete_signals,
      all(&W::GetMessageIterator, &W::DeleteMessage),
      all(&W::GetEnvvarIterator, &W::DeleteEnvvar),
      all(&W::GetBitTimingIterator, &W::DeleteBitTiming),
  };
  for (int first = 0; first < 9; ++first) {
    Edited e(folder);
    std::vector<std::string> lines;
    for (int i = 0; i < 9; ++i) {
      deletions[(first + i) % 9](e);
      lines = e.lines();
    }
    const auto body = std::find(lines.begin(), lines.end(), "BS_:");
    EXPECT_EQ(std::vector<std::string>(body, lines.end()), left) << first;
    EXPECT_EQ(e.ReopenDatabase(e.db), 0) << zelk_get_error_text();
  }
}

// A record that the database does not hold is not deleted.
TEST_F(Deletions, OfWhatTheDatabaseHolds) {
  Edited e(folder);
  const char* other = nullptr;
  ASSERT_EQ(e.CreateDatabase("other", &other, nullptr), 0);
  symblk& foreign = *e.CreateNode(other, 0);
  e.SetName(foreign, "Foreign");
  const auto before = e.lines();
  e.DeleteNode(foreign, e.db);
  e.DeleteMessage(e.message(), other);
  e.DeleteSignal(e.signal("S"), other);
  sigblk loose = {};
  e.DeleteSignal(loose);
  EXPECT_EQ(difference(before, e.lines()), "");
  EXPECT_EQ(e.NodeCount(other), 1U);
}

// An edit for which memory runs out changes nothing, and is reported.
TEST_F(EditsWithoutMemory, ChangeNothing) {
  const std::function<void(Edited&)> edits[] = {
      [](Edited& e) { e.CreateNode(e.db, 0); },
      [](Edited& e) { e.CreateSignal(e.message(), 0); },
      [](Edited& e) { e.SetName(e.signal("S"), "New"); },
      [](Edited& e) { e.SetComment(e.message(), "New"); },
      [](Edited& e) { e.SetValueDescription(e.signal("S"), 9, "New"); },
      [](Edited& e) { e.AddSignal(e.group(), e.signal("U")); },
      [](Edited& e) { e.AddFilterNode(e.node("B"), e.db); },
      [](Edited& e) { e.SetAttrValue(*e.GetEnvvar("W", e.db), "Var", text_value("New")); },
  };
  for (const auto& edit : edits) {
    const auto index = &edit - edits;
    bool has_failed = true;
    for (std::size_t n = 0; has_failed; ++n) {
      Edited e(folder);
      const auto before = e.lines();
      zelk_clear_error_text();
      has_failed = fails_at<FailingCalloc>(n, [&] { edit(e); });
      EXPECT_STREQ(zelk_get_error_text(), has_failed ? "not enough memory\n" : "") << index;
      if (!has_failed) continue;
      EXPECT_EQ(difference(before, e.lines()), "") << index;
      EXPECT_EQ(e.signal("U").receiver_count + e.variable().access_node_count, 2) << index;
      EXPECT_EQ(e.message().signal_count, 3) << index;
    }
  }
}

// The values of a link are not released with it: a host takes them before.
TEST_F(Deletions, LeaveTheValuesOfLinks) {
  Edited e(folder);
  rxblk* link = e.signal("S").receivers;
  while (!link->attrs) link = link->next;
  attr* const value = link->attrs;
  e.RemoveReceiver(e.signal("S"), *link->node);
  EXPECT_STREQ(value->def->name, "RelSig");
  EXPECT_EQ(value->value.number, 3);
  zelk_mfree(value);
}

}  // namespace
