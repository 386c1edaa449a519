// Every function that the library exports stands in a table of operations.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include "operations/operation.hpp"
#include "support/paths.hpp"

namespace {

// Members that no host can call: public ones lead to them. Derived converters may call those of
// converters, which Import and Export consist of.
constexpr const char* kInner[] = {
    "ZelkColumnDecoder::State::",
    "ZelkConverter::",
    "ZelkDatabase::BelongsToAnother",
    "ZelkDatabase::CopyFrom",
    "ZelkDatabase::Destroy",
    "ZelkDatabase::DropIndex",
    "ZelkDatabase::FindListed",
    "ZelkDatabase::ForbidIndex",
    "ZelkDatabase::HoldListed",
    "ZelkDatabase::Index",
    "ZelkDatabase::MayBeSaved",
    "ZelkDatabase::OwnFile",
    "ZelkDatabase::ReadFile",
    "ZelkDatabase::Save",
    "ZelkDatabase::SetFile",
    "ZelkDatabase::StartSaving",
    "ZelkDatabase::TakeFileOf",
    "ZelkFrameCounts::IdHash::operator",
    "ZelkDatabase::WriteOwn",
    "ZelkExporter::ProcessFile",
    "ZelkFrameBlock::grow",
    "ZelkImporter::CopyDatabaseLists",
    "ZelkImporter::CreateDatabase",
    "ZelkImporter::FillDatabase",
    "ZelkImporter::PostProcess",
    "ZelkImporter::ProcessFile",
    "ZelkLock::CreateUnlessRefused",
    "ZelkLock::FindForeign",
    "ZelkLock::IsRefused",
    "ZelkLock::ListInsertLock",
    "ZelkLock::ListRemoveLock",
    "ZelkLock::ListRemoveLocks",
    "ZelkLock::Message",
    "ZelkLock::Refusal",
    "ZelkLock::ZelkLock",
    "ZelkLogPipeline::State::",
    "ZelkManager::AddNews",
    "ZelkManager::Answer",
    "ZelkManager::CloseNode",
    "ZelkManager::DefaultFor",
    "ZelkManager::DescriptionOf",
    "ZelkManager::EnterManagersList",
    "ZelkManager::FindDatabase",
    "ZelkManager::FindDefinition",
    "ZelkManager::ForgetCached",
    "ZelkManager::GetDbNameBySelectionPattern",
    "ZelkManager::IsEdited",
    "ZelkManager::IsWrittenByOtherThread",
    "ZelkManager::KeepErrorText",
    "ZelkManager::LeaveManagersList",
    "ZelkManager::ListFindDatabase",
    "ZelkManager::ListFindName",
    "ZelkManager::ListFindNode",
    "ZelkManager::ListFindPath",
    "ZelkManager::ListInsertDatabase",
    "ZelkManager::ListRemoveDatabase",
    "ZelkManager::NumberOf",
    "ZelkManager::OpenAssigned",
    "ZelkManager::OwnsForWrite",
    "ZelkManager::PutIntoCache",
    "ZelkManager::RemoveFromCache",
    "ZelkManager::Rename",
    "ZelkManager::Reopen",
    "ZelkTimeWindow::FailWithoutTime",
    "ZelkTimeWindow::InLog",
    "ZelkTimeline::State::",
    "ZelkTransport::State::",
    "ZelkWriteManager::CheckForLock",
    "ZelkWriteManager::HandOutDefinition",
    "ZelkWriteManager::WriteAllDatabases",
    "ZelkWriteManager::WriteAndNotify",
};

/// The exports that operations stand for, and those of converters, which have tests of their own.
std::set<std::string> named_exports() {
  std::set<std::string> all = {"ZelkImporter::ZelkImporter", "ZelkImporter::Import",
                               "ZelkExporter::ZelkExporter", "ZelkExporter::Export"};
  for (const auto& [subject, table] : operations()) {
    for (const Operation& operation : table) {
      std::istringstream names(operation.names);
      for (std::string name; names >> name;) all.insert(name);
    }
  }
  return all;
}

bool is_inner(const std::string& name) {
  return std::any_of(std::begin(kInner), std::end(kInner), [&name](std::string_view inner) {
    return inner.ends_with("::") ? name.starts_with(inner) : name == inner;
  });
}

/// The name of a function in a line of the list; empty for a line that has none to call.
std::string function_of(const std::string& line) {
  const bool is_none = line.starts_with("#") || line.starts_with("typeinfo") ||
                       line.starts_with("vtable") || line.find('~') != line.npos;
  return is_none ? "" : line.substr(0, line.find_first_of("([ "));
}

// A new export is a new operation: it says what it does without memory.
TEST(Exhausted, EveryExportIsAnOperation) {
  const std::set<std::string> named = named_exports();
  std::size_t count = 0;
  for (const char* const library : {"zelkmsnx", "zelklogs"}) {
    std::ifstream list(ZELK_SOURCE_DIR "/tests/abi/" + std::string(library) + ".txt");
    for (std::string line; std::getline(list, line);) {
      const std::string name = function_of(line);
      if (name.empty() || is_inner(name)) continue;
      ++count;
      EXPECT_TRUE(named.contains(name)) << name;
    }
  }
  EXPECT_GT(count, 500U);
  for (const std::string& name : named) EXPECT_FALSE(is_inner(name)) << name;
}

}  // namespace
