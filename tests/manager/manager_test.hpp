/// Managers under test, with a check that nothing is left of them.
#ifndef ZELK_TESTS_MANAGER_MANAGER_TEST_HPP
#define ZELK_TESTS_MANAGER_MANAGER_TEST_HPP

#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "database/registry.hpp"
#include "manager/lock_list.hpp"
#include "support/folder.hpp"
#include "support/host.hpp"

inline constexpr char kDatabase[] = "BS_:\nBU_: A\n";
inline constexpr char kFaulty[] = "BS_:\nBU_: A\nBO_ 1\n";

inline std::ptrdiff_t databases_alive() { return std::ssize(zelk::registry().all()); }
inline std::ptrdiff_t locks_alive() { return std::ssize(zelk::lock_list().all()); }

/// Managers live in the body of a test, so that all must be gone at its end.
class ManagerTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(databases_alive(), 0);
    EXPECT_EQ(locks_alive(), 0);
    EXPECT_EQ(ZelkManager::GetManagersList(), nullptr);
  }

  /// The handle of a file that can be opened.
  static const char* open(ZelkManager& manager, const std::string& path,
                          const char* wanted_name = nullptr, unsigned priority = 0) {
    const char* name = nullptr;
    EXPECT_EQ(manager.OpenDatabase(path.c_str(), &name, wanted_name, priority), 0) << path;
    return name;
  }

  const Folder folder;
  Host host;
};

/// A manager without a window or thread.
struct Manager : ZelkManager {
  Manager() : ZelkManager(static_cast<void*>(nullptr)) {}
};

#endif
