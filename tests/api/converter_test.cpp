#include "zelk/converter.hpp"

#include <gtest/gtest.h>

#include "support/files.hpp"
#include "support/folder.hpp"
#include "support/paths.hpp"
#include "zelk/dbc.h"
#include "zelk/errors.h"

namespace {

constexpr void* kNobody = nullptr;
constexpr char kSignals[] =
    "Engine,0x100,8,Speed,0,16,0.25,-10,rpm\nEngine,0x100,8,Torque,16,8,1,0,Nm\n"
    "Body,0x80000200,4,Light,3,1,1,0,\n";

class Converters : public testing::Test {
 protected:
  ZelkError import(const char* module, const char* function, const std::string& file,
                   const char* db = "imported") {
    ZelkImporter importer(manager, module, function);
    const ZelkError error = importer.Import(db, &name, file.c_str());
    EXPECT_EQ(importer.Status(), error == 0 ? 0U : 1U);
    EXPECT_EQ(manager.DatabaseCount(), error == 0 ? 1U : 0U);
    EXPECT_EQ(zelk_get_conversion(), nullptr);
    return error;
  }

  const Folder folder;
  ZelkWriteManager manager{kNobody};
  const char* name = nullptr;
};

TEST_F(Converters, ImportToTheDbcFileBesideTheSource) {
  const std::pair<const char*, const char*> cases[] = {{"no_extension", "no_extension.DBC"},
                                                       {"dotted.dir/plain", "dotted.dir/plain.DBC"},
                                                       {"two.dots.csv", "two.dots.DBC"}};
  for (const auto& [source, target] : cases) {
    ASSERT_EQ(import(ZELK_CSV_MODULE, "zelk_import", folder.write(source, kSignals)), 0) << source;
    EXPECT_EQ(manager.GetDatabasePath("imported"), folder.path(target));
    EXPECT_FALSE(std::filesystem::exists(folder.path(target)));
    EXPECT_EQ(manager.MessageCount(name), 2U);
    EXPECT_EQ(manager.WriteDatabase(name, nullptr), 0);
    EXPECT_NE(content_of(folder.path(target)).find(" SG_ Torque : 16|8@1+"), std::string::npos);
    manager.CloseDatabase(false);
  }
}

TEST_F(Converters, RefuseImports) {
  const std::string source = folder.write("a.csv", kSignals);
  const std::string taken = folder.write("taken.csv", kSignals);
  const std::string locked = folder.write("locked.csv", kSignals);
  const std::string faulty = folder.write("faulty.csv", std::string(kSignals) + "Body,1\n");
  folder.write("taken.DBC", "");
  Folder::set_read_only(locked, true);
  const struct {
    const char *module, *function;
    std::string file;
    const char* db;
    int expected;
    const char* told;
  } cases[] = {
      {ZELK_CSV_MODULE, "zelk_import", "missing.csv", "a", 2, ""},
      {ZELK_CSV_MODULE, "zelk_import", locked, "a", 8, ""},
      {ZELK_CSV_MODULE, "zelk_import", source, "1", 7, ""},
      {ZELK_CSV_MODULE, "zelk_import", taken, "a", 10, ""},
      {ZELK_CSV_MODULE, "zelk_import", faulty, "a", 1,
       "database: format error in converted file, line 4, 9 fields are expected\n"},
      {ZELK_CSV_MODULE, "zelk_imp", source, "a", 1,
       "database: could not generate converted file, the module has no such function\n"},
      {ZELK_CSV_MODULE, nullptr, source, "a", 1,
       "database: could not generate converted file, the module has no such function\n"},
      {"missing.module", "zelk_import", source, "a", 1,
       "database: could not generate converted file, the module cannot be loaded\n"},
      {source.c_str(), "zelk_import", source, "a", 1,
       "database: could not generate converted file, the module cannot be loaded\n"},
      {ZELK_BAD_MODULE, "raise", source, "a", 1,
       "database: format error in converted file, raised\n"},
      {ZELK_BAD_MODULE, "raise_memory", source, "a", 1, "not enough memory\n"},
      {ZELK_BAD_MODULE, "raise_number", source, "a", 1,
       "database: format error in converted file, the converter module failed\n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(import(c.module, c.function, c.file, c.db), c.expected) << c.told;
    EXPECT_STREQ(zelk_get_error_text(), c.told) << c.file;
    EXPECT_EQ(name, nullptr);
  }
  Folder::set_read_only(locked, false);
  ASSERT_EQ(import(ZELK_CSV_MODULE, "zelk_import", source, "a"), 0) << "nothing is left in the way";
  ZelkImporter again(manager, ZELK_CSV_MODULE, "zelk_import");
  EXPECT_EQ(again.Import("a", nullptr, taken.c_str()), 3) << "tested before the file";
}

// Whatever a module fills in, the signals are those of their messages, and all can be written as it
// is; a save refuses what no file could give back.
TEST_F(Converters, NonsenseDoesNoHarm) {
  ASSERT_EQ(import(ZELK_BAD_MODULE, "nonsense", folder.write("a.x", "")), 0);
  for (const msgblk* message : manager.GetMessageIterator(name)) {
    EXPECT_EQ(message->signals->message, message);
    EXPECT_EQ(message->signals->receivers->node, nullptr);
  }
  const ZelkDatabase& filled = *manager.GetConstDatabase(name);
  EXPECT_EQ(zelk_try_write(folder.path("b.dbc").c_str(), filled.nodes, filled.messages,
                           filled.env_vars, filled.bit_timings, filled.attr_defs,
                           filled.attr_values, filled.categories, filled.filter, filled.comment,
                           filled.user_data, filled.signal_types, filled.value_tables, 1),
            ZELK_OK);
  EXPECT_EQ(manager.WriteDatabase(name, nullptr), ZelkErrorNotWritten);
}

TEST_F(Converters, Export) {
  ASSERT_EQ(import(ZELK_CSV_MODULE, "zelk_import", folder.write("a.csv", kSignals)), 0);
  const std::string target = folder.path("b.csv"), none = folder.path("none.csv");
  const struct {
    const char *module, *function, *db;
    std::string file;
    const char* option;
    int expected;
    bool is_written;
    const char* told;
  } cases[] = {
      {ZELK_CSV_MODULE, "zelk_export", "imported", target, "", 9, false, ""},  // no handle
      {ZELK_CSV_MODULE, "zelk_export", name, target, "", 0, true, ""},
      {ZELK_CSV_MODULE, "zelk_export", "imported", target, "", 10, true, ""},
      {ZELK_CSV_MODULE, "zelk_exprot", name, none, "", 0, false,
       "database: could not generate converted file, the module has no such function\n"},
      {ZELK_CSV_MODULE, "zelk_export", name, folder.path("no/folder.csv"), "", 9, false,
       "database: could not generate converted file, the file cannot be written\n"},
      {ZELK_BAD_MODULE, "asked", name, none, "yes", 0, false, ""},
      {ZELK_BAD_MODULE, "asked", name, none, nullptr, 9, false, ""},
  };
  for (const auto& c : cases) {
    ZelkExporter exporter(manager, c.module, c.function);
    exporter.SetOption(c.option);
    EXPECT_EQ(exporter.Export(c.db, c.file.c_str()), c.expected) << c.file;
    EXPECT_EQ(exporter.Status(), c.expected == 0 ? 0U : 1U);
    EXPECT_STREQ(zelk_get_error_text(), c.told);
    EXPECT_EQ(std::filesystem::exists(c.file), c.is_written) << c.file;
    EXPECT_EQ(exporter.GetDatabase(name), manager.GetDatabase(name));
  }
  EXPECT_EQ(content_of(target), kSignals);
}

/// Takes over what the module filled, and says so or not.
struct Keeper : ZelkImporter {
  Keeper(ZelkWriteManager& manager, bool answer)
      : ZelkImporter(manager, ZELK_CSV_MODULE, "zelk_import"), answer_(answer) {}

  bool PostProcess(symblk* nodes, msgblk* messages, env_var_blk* env_vars, btlblk* bit_timings,
                   attr_def* attr_defs, attr* attr_values, cat* categories, filter_t filter,
                   char* comment, char* user_data, sigtype* signal_types,
                   valtable* value_tables) override {
    EXPECT_STREQ(messages->name, "Engine");
    EXPECT_NE(messages, database_->messages);
    ZelkImporter::PostProcess(nodes, messages, env_vars, bit_timings, attr_defs, attr_values,
                              categories, filter, comment, user_data, signal_types, value_tables);
    return answer_;
  }

  const bool answer_;
};

TEST_F(Converters, HandTheListsToPostProcess) {
  const std::string source = folder.write("a.csv", kSignals);
  for (const bool answer : {false, true}) {
    Keeper keeper(manager, answer);
    EXPECT_EQ(keeper.Import("kept", nullptr, source.c_str()), answer ? 0 : 1);
    EXPECT_EQ(manager.DatabaseCount(), answer ? 1U : 0U);
  }
}

}  // namespace
