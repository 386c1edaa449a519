#include <array>
#include <memory>
#include <string_view>

#include "manager/manager_test.hpp"
#include "model/memory.hpp"

namespace {

using Caching = ManagerTest;

/// Two managers with one file. A letter is a step of the first one, a capital one of the second:
/// open, close, keep (close into the cache), flush, name; "!" changes the content but not the time.
struct TwoManagers {
  void take(char step) {
    if (step == '!') return void(folder.write("a.dbc", "BS_:\nBU_: New\n"));
    const std::size_t side = step >= 'a' ? 0 : 1;
    const int kind = step | 0x20;
    Manager& manager = *managers[side];
    if (kind == 'o') manager.OpenDatabase(path.c_str(), &names[side], 0);
    if (kind == 'n') zelk_mfree(const_cast<char*>(manager.GetDatabaseName(path.c_str())));
    if (kind == 'f') manager.FlushDatabaseCache();
    if (kind != 'c' && kind != 'k') return;
    manager.CloseDatabase(kind == 'k');
    names[side] = nullptr;
  }

  ZelkDatabase* database(std::size_t side) const {
    return managers[side]->GetDatabase(names[side]);
  }

  const Folder& folder;
  const std::string path = folder.write("a.dbc", "BS_:\nBU_: Old\n");
  std::array<std::unique_ptr<Manager>, 2> managers = {std::make_unique<Manager>(),
                                                      std::make_unique<Manager>()};
  std::array<const char*, 2> names = {};
};

TEST_F(Caching, SparesReading) {
  const struct {
    std::string_view steps;  ///< the last one opens
    const char* node;        ///< what it finds
  } cases[] = {
      {"oc!o", "New"},    {"ok!o", "Old"},    {"ok!oco", "New"},   // opening takes the mark away
      {"okf!o", "New"},   {"ok!O", "Old"},    {"okokf!o", "New"},  // of another manager too
      {"okF!o", "Old"},   {"n!o", "Old"},     {"nf!o", "New"},
      {"oOkC!o", "Old"},  {"oOkCf!o", "New"}, {"oOkf!o", "Old"},  // the other one holds it
      {"okOC!o", "New"},   // the second open took away the first one's mark
      {"okOKf!O", "New"},  // and the first one's flush that of the second
  };
  for (const auto& c : cases) {
    TwoManagers two{folder};
    for (const char step : c.steps) two.take(step);
    const ZelkDatabase* const opened = two.database(c.steps.back() == 'o' ? 0 : 1);
    ASSERT_NE(opened, nullptr) << c.steps;
    EXPECT_STREQ(opened->nodes->name, c.node) << c.steps;
  }
}

// What a manager holds is alive (a sanitizer would see otherwise), and the same for both.
TEST_F(Caching, InAllOrders) {
  constexpr std::string_view kSteps = "ockfOCKF";
  for (unsigned order = 0; order < 8U * 8 * 8; ++order) {
    TwoManagers two{folder};
    std::string steps = "o";
    two.take('o');
    for (unsigned rest = order, i = 0; i < 3; ++i, rest /= 8) {
      steps += kSteps[rest % 8];
      two.take(steps.back());
      for (const std::size_t side : {0, 1}) {
        if (!two.names[side]) continue;
        EXPECT_STREQ(two.database(side)->nodes->name, "Old") << steps;
        EXPECT_TRUE(!two.names[1 - side] || two.database(0) == two.database(1)) << steps;
      }
    }
    two.managers[order / 3 % 2].reset();
    two.managers = {};
    ASSERT_EQ(databases_alive(), 0) << steps;
  }
}

}  // namespace
