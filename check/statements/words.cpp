#include <algorithm>
#include <array>
#include <cstddef>

#include "base/hash_table.hpp"
#include "check/statements/token.hpp"

namespace zelk::check {

namespace {

struct Spelling {
  std::string_view text;
  int place;  // 0 for words that begin no statement
};

/// In the order of `Word`.
constexpr std::array<Spelling, 42> kSpellings = {{
    {"", 0},
    {"BO_", 6},
    {"SG_", 6},
    {"BU_", 4},
    {"BS_", 3},
    {"VERSION", 1},
    {"EV_", 8},
    {"INT", 0},
    {"HEX", 0},
    {"FLOAT", 0},
    {"STRING", 0},
    {"ENUM", 0},
    {"NS_", 2},
    {"NS_DESC_", 0},
    {"CM_", 11},
    {"BA_DEF_", 12},
    {"BA_", 15},
    {"VAL_", 16},
    {"CAT_DEF_", 17},
    {"CAT_", 18},
    {"FILTER", 19},
    {"BA_DEF_DEF_", 14},
    {"EV_DATA_", 9},
    {"ENVVAR_DATA_", 9},
    {"SGTYPE_", 10},
    {"SGTYPE_VAL_", 0},
    {"BA_DEF_SGTYPE_", 13},
    {"BA_SGTYPE_", 15},
    {"SIG_TYPE_REF_", 20},
    {"VAL_TABLE_", 5},
    {"SIG_GROUP_", 21},
    {"SIG_VALTYPE_", 22},
    {"SIGTYPE_VALTYPE_", 22},
    {"BO_TX_BU_", 7},
    {"BA_DEF_REL_", 12},
    {"BA_REL_", 15},
    {"BA_DEF_DEF_REL_", 14},
    {"BU_SG_REL_", 0},
    {"BU_EV_REL_", 0},
    {"BU_BO_REL_", 0},
    {"SG_MUL_VAL_", 23},
    {"", 0},
}};
static_assert(kSpellings[static_cast<std::size_t>(Word::kMultiplexorRanges)].text == "SG_MUL_VAL_");

const Spelling& row_of(Word word) { return kSpellings[static_cast<std::size_t>(word)]; }

struct SpelledLike {
  std::string_view name;
  bool operator()(Word word) const { return spelling(word) == name; }
};

/// The words by the hashes of their spellings.
class WordTable {
 public:
  WordTable() {
    for (std::size_t i = 1; i + 1 < kSpellings.size(); ++i) {
      const std::string_view text = kSpellings[i].text;
      table_.enter(hash_(text), static_cast<Word>(i), SpelledLike{text});
    }
  }
  Word find(std::string_view name) const { return table_.find(hash_(name), SpelledLike{name}); }

 private:
  SeededHash hash_;
  HashTable<std::uint64_t, Word> table_{kSpellings.size()};
};

}  // namespace

std::string_view spelling(Word word) { return row_of(word).text; }

int place_of(Word word) { return row_of(word).place; }

Word find_word(std::string_view name) {
  static const WordTable table;
  // Every keyword has a capital as its second letter; few names have.
  const bool may_be = name.size() > 2 && name[1] >= 'A' && name[1] <= 'Z';
  return may_be ? table.find(name) : Word::kNone;
}

}  // namespace zelk::check
