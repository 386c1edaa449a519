// Conversions of several threads at once, each with a manager of its own.

#include "support/threads.hpp"
#include "modules/conversions.hpp"
#include "support/paths.hpp"

namespace {

const std::string kContent = bytes_of(ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc");

/// The file of a database that went through a module.
std::string converted(const char* module) {
  Conversions host(module);
  const bool is_repair = std::string_view(module).find("repair") != std::string_view::npos;
  const std::string file = is_repair ? "BU_: A\n" + kContent : host.exported(host.opened(kContent));
  const std::string told = host.import(file);
  return host.name ? told + host.written(host.name) : told + "not imported";
}

/// What stands in the error text when nothing can be read.
std::string refusal(const char* module) { return Conversions(module).import("{ <"); }

TEST(ConversionThreads, WriteWhatOneWrites) {
  for (const char* const module : {ZELK_JSON_MODULE, ZELK_KCD_MODULE, ZELK_REPAIR_MODULE}) {
    const std::string alone = converted(module), refused = refusal(module);
    EXPECT_GT(alone.size(), 1000U) << alone;
    EXPECT_NE(refused, "") << module;
    const auto convert = [&](int, int) {
      EXPECT_EQ(converted(module), alone);
      EXPECT_EQ(refusal(module), refused);
    };
    run_in_threads(convert, 2);
  }
}

}  // namespace
