#include <gtest/gtest.h>

#include <clocale>
#include <locale>

#include "support/building.hpp"
#include "support/failing.hpp"
#include "support/paths.hpp"
#include "support/system.hpp"

namespace {

const std::string kPowertrain = ZELK_SOURCE_DIR "/examples/powertrain.dbc";

/// Every statement and many numbers.
struct Model : Database {
  Model() { EXPECT_EQ(read_file(kPowertrain.c_str()), 0u) << reported; }
};

TEST(RoundTrip, OfTheExample) { EXPECT_EQ(written(Model()), content_of(kPowertrain)); }

TEST(RoundTrip, UnderALocaleWithDecimalComma) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  const Model model;
  Database same_model;
  const std::string text = written(model);
  const std::locale old_locale =
      std::locale::global(std::locale(std::locale::classic(), new Comma));  // of streams alone
  const bool is_entered = enter_decimal_comma();
  const bool has_comma = *std::localeconv()->decimal_point == ',';
  const std::string same_text = written(model);
  const uint32_t number = same_model.read(text);
  const std::string again = written(same_model);
  std::locale::global(old_locale);
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(has_comma, is_entered);
  EXPECT_EQ(same_text, text);
  EXPECT_EQ(number, 0u) << same_model.reported;
  EXPECT_EQ(again, text);
  EXPECT_EQ(describe(same_model), describe(model));
  if (!has_comma) GTEST_SKIP() << "the process had no such locale, only the streams";
}

// In Shift-JIS 0x83 0x5C is one character, whose second byte is a backslash elsewhere.
TEST(RoundTrip, OfDoubleByteCharacters) {
  if (!enter_double_byte_characters()) GTEST_SKIP() << "not with this system's characters";
  for (const char* text :
       {"\x83\x5C", "a\x83\x5C\"b\x83\x5C", "\x83\x83\x5C\"", "\xB1\"", "\x83"}) {
    Database model, read_back;
    set(model.comment, text);
    EXPECT_EQ(read_back.read(written(model)), 0u) << read_back.reported;
    EXPECT_STREQ(read_back.comment, text);
  }
  std::setlocale(LC_ALL, "C");
}

TEST(Write, ToAPathThatCannotBeOpened) {
  zelk_clear_error_text();
  for (const char* path : {"no_such_directory/file.dbc", ".", ""}) {
    EXPECT_EQ(write_to(path, Database()), 13u) << path;
  }
  EXPECT_STREQ(zelk_get_error_text(), "");
}

TEST(Write, WithoutMemory) {
  Model model;
  for (const char* end : {"1", "2", "3"}) {
    append_named(model.nodes, zelk_create_symbol(), std::string(33, 'n') + end);
  }
  const std::string before = describe(model), text = written(model);
  const TemporaryFile file("");
  std::size_t failures = 0;
  for (bool failed = true; failed; ++failures) {
    ASSERT_LT(failures, 100000u);
    zelk_clear_error_text();
    uint32_t number = 0;
    failed = fails_at<FailingNew>(failures,
                                  [&] { number = model.write_by(zelk_try_write, file.path()); });
    ASSERT_EQ(number, failed ? 24u : 0u);
    const std::string_view reported = zelk_get_thread_error_text();
    EXPECT_TRUE(reported.ends_with(failed ? "not enough memory\n" : ""));
  }
  EXPECT_GT(failures, 5u) << "allocations of a write";
  EXPECT_EQ(describe(model), before);
  EXPECT_EQ(written(model), text);
}

}  // namespace
