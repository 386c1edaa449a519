#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <locale>
#include <random>
#include <set>
#include <tuple>
#include <vector>

#include "support/building.hpp"
#include "support/failing.hpp"
#include "support/system.hpp"
#include "zelk/exception.hpp"

namespace {

/// Random databases. What the format cannot hold is not generated: numbers of more than 14 digits;
/// texts that end in a backslash or hold a carriage return before a line feed; empty comments; zero
/// factors; minima above maxima; equal names of objects that statements name; relation definitions
/// ahead of others; a single transmitter that is not the message's own; ranges and multiplexors
/// that the message does not imply; a filter with one empty list; a second empty item at the end of
/// an ENUM.
class Generator {
 public:
  Generator(Database& database, unsigned seed) : d_(database), random_(seed) {
    set(d_.version, text());
    if (below(2) == 0) set(d_.comment, text(1));
    fill_definitions();
    const auto first_category = static_cast<int16_t>(half());
    repeat(3, [&](uint32_t i) {
      cat* const category = append_named(d_.categories, zelk_create_category(), name(32));
      category->number = static_cast<int16_t>(first_category + static_cast<int>(i));
      category->level = half();
    });
    repeat(3, [&](uint32_t) {
      *append(d_.timings, zelk_create_btlblk()) = {small(), byte(), byte(), nullptr};
    });
    repeat(6, [&](uint32_t) {
      finish(*append_named(d_.nodes, zelk_create_symbol(), name(40)), ZELK_OBJ_NODE);
    });
    repeat(3, [&](uint32_t) {
      descriptions(append_named(d_.tables, zelk_create_valtable(), name(32))->values);
    });
    repeat(3, [&](uint32_t) { fill(*append_named(d_.types, zelk_create_sigtype(), name(32))); });
    repeat(5, [&](uint32_t i) {
      msgblk* const message = append_named(d_.messages, zelk_create_msgblk(), name(40));
      message->id = ~(i << 29 | below(1u << 29));
      fill(*message);
    });
    repeat(4, [&](uint32_t) { fill(*append_named(d_.variables, zelk_create_evblk(), name(40))); });
    values(d_.values, ZELK_OBJ_NETWORK);
    if (below(2) == 0) fill_filter();
  }

 private:
  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(random_() % bound); }
  uint32_t word() { return static_cast<uint32_t>(random_()) >> below(32); }
  uint16_t half() { return static_cast<uint16_t>(random_()); }
  uint16_t small() { return half() & 0x7FFF; }  // as far as lengths and positions go
  uint8_t byte() { return static_cast<uint8_t>(random_()); }

  template <typename Function>
  void repeat(uint32_t most, Function function) {
    const uint32_t count = below(most + 1);
    for (uint32_t i = 0; i < count; ++i) function(i);
  }

  /// A name never given before, and no keyword. Long ones have long beginnings in common.
  std::string name(uint32_t most) {
    static constexpr char kLetters[] = "abyzBXYZ_0189";
    for (;;) {
      const uint32_t size = 1 + below(most);
      std::string result = size > 20 && below(2) == 0 ? "Common_beginning_of_many_long_names" : "";
      while (result.size() < size) result += kLetters[below(result.empty() ? 9 : 13)];
      result.resize(size);
      if (given_.insert(result).second) return result;
    }
  }

  std::string text(uint32_t least = 0, uint32_t most = 12) {
    static constexpr char kCharacters[] = "a B;'\"\"\\\\\n\t/|\x80\xE9\xFF\x01";
    std::string result(least + below(most - least + 1), ' ');
    for (char& c : result) c = kCharacters[below(sizeof kCharacters - 1)];
    if (result.ends_with('\\')) result.back() = '.';
    return result;
  }

  double number() {
    static constexpr double kEdges[] = {0,     -0.0,       1,          -1,   0.1,  5e-324, 1.7e308,
                                        32768, 4294967295, 4294967296, 1e13, 1e14, 1e-4,   1e-5};
    if (below(2) == 0) return kEdges[below(std::size(kEdges))];
    const auto any = std::bit_cast<double>(uint64_t{random_()} << 32 | random_());
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.14G", std::isfinite(any) ? any : 0.5);
    return std::strtod(digits, nullptr);
  }

  template <typename Record>
  void range(Record& record) {
    std::tie(record.minimum, record.maximum) = std::minmax({number(), number()});
  }

  template <typename Record>
  Record* one_of(Record* list) {
    std::vector<Record*> records = {nullptr};
    for (; list; list = list->next) records.push_back(list);
    return records[below(static_cast<uint32_t>(records.size()))];
  }

  void fill_definitions() {
    for (int32_t kind = ZELK_OBJ_NETWORK; kind <= ZELK_OBJ_REL_ENVVAR; ++kind) {
      repeat(3, [&](uint32_t) {
        const auto type = static_cast<int32_t>(below(5));
        std::string items = text(0, 5);
        std::replace(items.begin(), items.end(), '\\', '\n');
        if (items.starts_with('\n') || items.ends_with("\n\n")) items = "x\n\ny";
        const std::string first = items.substr(0, items.find('\n'));
        attr_def* const definition = add_definition(d_, kind, name(20) + text(1), type, items,
                                                    type == ZELK_ATTR_ENUM ? first : text());
        if (type == ZELK_ATTR_ENUM || type == ZELK_ATTR_STRING) return;
        range(*definition);
        definition->default_value.number = number();
      });
    }
  }

  void values(attr*& list, int32_t kind) {
    for (attr_def* definition = d_.definitions; definition; definition = definition->next) {
      if (definition->object_type != kind || below(2) == 0) continue;
      zelk_attr_value_t& value = add_value(list, definition)->value;
      if (definition->value_type == ZELK_ATTR_STRING) {
        set(value.text, text());
      } else if (definition->value_type == ZELK_ATTR_ENUM) {
        value.number = std::strchr(definition->enum_values, '\n') ? below(2) : 0;
      } else {
        value.number = number();
      }
    }
  }

  void descriptions(val*& list) {
    repeat(3, [&](uint32_t) { add_description(list, static_cast<int32_t>(word()), text()); });
  }

  template <typename Object>
  void finish(Object& object, int32_t kind) {
    if (below(2) == 0) set(object.comment, text(1, 40));
    if constexpr (requires { object.category; }) object.category = one_of(d_.categories);
    if constexpr (requires { object.values; }) descriptions(object.values);
    values(object.attrs, kind);
  }

  uint16_t links(rxblk*& list, int32_t relation) {
    uint16_t count = 0;
    for (symblk* node = d_.nodes; node; node = node->next) {
      if (below(2) == 0) continue;
      values(append(list, zelk_create_rx(node))->attrs, relation);
      ++count;
    }
    return count;
  }

  template <typename Layout>
  void fill_layout(Layout& record) {
    record.length = static_cast<uint16_t>(1 + below(32767));
    record.flags = static_cast<uint16_t>(below(4));
    record.offset = number();
    record.factor = number();
    if (record.factor == 0) record.factor = 1;
    range(record);
    set(record.unit, text(0, 32));
    record.value_type = below(2) == 0 ? 0 : word();
  }

  void fill(sigtype& type) {
    fill_layout(type);
    type.default_value = number();
    type.valtable = one_of(d_.tables);
    finish(type, ZELK_OBJ_SIGTYPE);
  }

  void fill(env_var_blk& variable) {
    variable.type = below(4);
    set(variable.unit, text(0, 32));
    range(variable);
    variable.initial = number();
    variable.id = word();
    variable.access_node_count = links(variable.access_nodes, ZELK_OBJ_REL_ENVVAR);
    variable.access_type = word() & ~0x8000u;
    if (variable.type == ZELK_ENVVAR_DATA) variable.data_size = word();
    finish(variable, ZELK_OBJ_ENVVAR);
  }

  void fill(sigblk& signal) {
    signal.start_bit = small();
    fill_layout(signal);
    signal.receiver_count = links(signal.receivers, ZELK_OBJ_REL_SIGNAL);
    signal.sigtype = one_of(d_.types);
    finish(signal, ZELK_OBJ_SIGNAL);
  }

  void fill(msgblk& message) {
    message.dlc = small();
    message.transmitter = one_of(d_.nodes);
    if (links(message.tx_nodes, ZELK_OBJ_REL_MESSAGE) < 2) {
      message.transmitter = message.tx_nodes ? message.tx_nodes->node : nullptr;
    }
    message.signal_count = 0;
    repeat(6, [&](uint32_t) { fill(*add_signal(&message, name(40))); });
    multiplex(message);
    repeat(2, [&](uint32_t) {
      siggroupblk* const group =
          append_named(message.siggroups, zelk_create_siggroup(&message), name(32));
      group->repetitions = static_cast<int32_t>(word());
      for (sigblk* signal = message.signals; signal; signal = signal->next) {
        if (below(2) == 0) append(group->signals, zelk_create_siglist(signal));
      }
    });
    finish(message, ZELK_OBJ_MESSAGE);
  }

  /// Makes the first signals multiplexors, and lets signals depend on those before them.
  void multiplex(msgblk& message) {
    std::vector<sigblk*> multiplexors;
    const uint32_t wanted = below(4);
    for (sigblk* signal = message.signals; signal; signal = signal->next) {
      const auto count = static_cast<uint32_t>(multiplexors.size());
      sigblk* const multiplexor = count == 0 ? nullptr : multiplexors[below(count)];
      if (count < wanted) {
        signal->flags |= ZELK_SIGNAL_MULTIPLEXOR;
        multiplexors.push_back(signal);
      }
      if (below(2) == 0 || (wanted > 0 && !multiplexor)) continue;
      const uint32_t value = word();
      add_range(signal, value, multiplexor ? word() : value);
      signal->mux_signal = multiplexor;
      if (!multiplexor || below(2) == 0) continue;
      repeat(3, [&](uint32_t) { add_range(signal, word(), word()); });
      signal->mux_ranges->high = ~value;
    }
  }

  void fill_filter() {
    d_.filter.mode = static_cast<int32_t>(word());
    bool has_zero = false;
    for (cat* category = d_.categories; category; category = category->next) {
      has_zero = has_zero || category->number == 0;
      append(d_.filter.categories, zelk::create_record<catlink>())->category = category;
    }
    if (!has_zero) append(d_.filter.categories, zelk::create_record<catlink>());
    repeat(3, [&](uint32_t) { append(d_.filter.nodes, zelk_create_rx(one_of(d_.nodes))); });
    append(d_.filter.nodes, zelk_create_rx(nullptr));
  }

  Database& d_;
  std::mt19937 random_;
  std::set<std::string> given_;
};

TEST(RoundTrip, OfRandomDatabases) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    Database model, read_back;
    const Generator generator(model, seed);
    const std::string before = describe(model), text = written(model);
    ASSERT_EQ(describe(model), before) << "changed by the write, seed " << seed;
    ASSERT_EQ(read_back.read(text), 0u) << read_back.reported << "seed " << seed << "\n" << text;
    ASSERT_EQ(describe(read_back), before) << "seed " << seed;
    ASSERT_EQ(written(read_back), text) << "seed " << seed;
  }
}

TEST(RoundTrip, OfFiles) {
  const std::string root = ZELK_SOURCE_DIR, example = content_of(root + "/examples/powertrain.dbc");
  Database powertrain;
  ASSERT_EQ(powertrain.read(example), 0u);
  EXPECT_EQ(written(powertrain), example);
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(root + "/tests/data")) {
    const std::string path = entry.path().string();
    if (entry.path().filename().string().starts_with("bad_") || !path.ends_with(".dbc")) continue;
    Database first, second;
    ASSERT_EQ(first.read_file(path.c_str()), 0u) << path;
    const std::string text = written(first);
    ASSERT_EQ(second.read(text), 0u) << path << second.reported;
    EXPECT_EQ(describe(second), describe(first)) << path;
    EXPECT_EQ(written(second), text) << path;
    ++files;
  }
  EXPECT_GE(files, 4);
}

TEST(RoundTrip, UnderALocaleWithDecimalComma) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  Database model, same_model;
  const Generator generator(model, 42);
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
  Database model;
  const Generator generator(model, 7);
  const std::string before = describe(model);
  zelk_clear_error_text();
  for (const char* path : {"no_such_directory/file.dbc", ".", ""}) {
    EXPECT_EQ(write_to(path, model), 13u) << path;
  }
  EXPECT_STREQ(zelk_get_error_text(), "");
  EXPECT_FALSE(std::filesystem::exists("no_such_directory"));
  EXPECT_EQ(describe(model), before);
}

TEST(Write, WithoutMemory) {
  Database model;
  const Generator generator(model, 11);
  for (const char* end : {"1", "2", "3"}) {
    append_named(model.nodes, zelk_create_symbol(), std::string(33, 'n') + end);
  }
  const std::string before = describe(model), text = written(model);
  const TemporaryFile file("");
  std::size_t failures = 0;
  for (bool failed = true; failed; ++failures) {
    ASSERT_LT(failures, 100000u);
    try {
      failed = fails_at<FailingNew>(failures, [&] { EXPECT_EQ(write_to(file.path(), model), 0u); });
    } catch (const ZelkException& exception) {
      EXPECT_STREQ(exception.what(), "not enough memory");
    }
  }
  EXPECT_GT(failures, 5u) << "allocations of a write";
  EXPECT_EQ(describe(model), before);
  EXPECT_EQ(written(model), text);
}

}  // namespace
