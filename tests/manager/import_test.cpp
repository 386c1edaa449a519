#include "manager/manager_test.hpp"
#include "model/memory.hpp"
#include "support/failing_calloc.hpp"
#include "support/failing_new.hpp"
#include "zelk/converter.hpp"
#include "zelk/exception.hpp"

namespace {

using Imports = ManagerTest;

/// Fills in, without a module, a node that sends a message with an attribute.
class Filler : public ZelkImporter {
 public:
  explicit Filler(ZelkWriteManager& manager) : ZelkImporter(manager, nullptr, nullptr) {}

 private:
  bool ProcessFile(const char* file) override {
    try {
      database_->nodes = zelk::create_record<symblk>();
      zelk::assign_text(database_->nodes->name, zelk::copy_text(file));
      database_->attr_defs = zelk::create_record<attr_def>();
      database_->messages = zelk::create_record<msgblk>();
      database_->messages->transmitter = database_->nodes;
      database_->messages->attrs = zelk::create_record<attr>();
      database_->messages->attrs->def = database_->attr_defs;
      return true;
    } catch (const ZelkException&) {
      return false;
    }
  }
};

/// An import of which a part could not be copied would be a loss that nobody sees.
template <typename Failing>
void import_without_memory(const std::string& source) {
  bool has_failed = true;
  for (std::size_t n = 0; has_failed; ++n) {
    ZelkWriteManager manager(static_cast<void*>(nullptr));
    Filler importer(manager);
    const char* name = nullptr;
    ZelkError result{};
    {
      const Failing failing(n);
      result = importer.Import("imported", &name, source.c_str());
      has_failed = failing.has_failed();
    }
    EXPECT_EQ(databases_alive(), result == 0 ? 1 : 0) << n;
    EXPECT_TRUE(has_failed || result == 0);
    if (result != 0) continue;
    const ZelkDatabase& database = *manager.GetDatabase(name);
    EXPECT_EQ(database.nodes->name, source) << n;
    EXPECT_EQ(database.messages->transmitter, database.nodes) << n;
    EXPECT_EQ(database.messages->attrs->def, database.attr_defs) << n;
  }
}

TEST_F(Imports, AreWholeOrNotAtAll) {
  const std::string source = folder.write("a.x", "");
  import_without_memory<FailingCalloc>(source);
  import_without_memory<FailingNew>(source);
}

}  // namespace
