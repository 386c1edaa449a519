// Edits carried over to texts. In the table a text stands behind ">", its records before and after
// the edit behind "<" and "=", and below them the text with the edit; "~" stands for line feeds and
// "'" for quotes.

#include "check/patch/patch.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "support/quoted.hpp"

namespace zelk::check {
namespace {

Document document_of(std::string text) {
  std::ranges::replace(text, '~', '\n');
  std::ranges::replace(text, '#', '\xFF');
  return read_document(Source("t.dbc", quoted(std::move(text))));
}

std::string patched(const std::string& text, const std::string& before, const std::string& after) {
  const auto result =
      patch(document_of(text), document_of(before), document_of(after), Nodes::kAll);
  if (!result) return "none";
  std::string shown = result->text;
  std::ranges::replace(shown, '\n', '~');
  std::ranges::replace(shown, '"', '\'');
  std::ranges::replace(shown, '\xFF', '#');
  return shown;
}

constexpr const char* kTable =
    R"(>// c~BS_:~BU_:~BA_DEF_ 'n' INT 0 1 ;~BA_DEF_ 'n' INT 0 02;~BA_DEF_ 'm' INT 0 1 ;~BA_DEF_ 'm' INT 0 02;~
<BS_:~BU_:~BA_DEF_ 'n' INT 0 1;~BA_DEF_ 'n' INT 0 2;~BA_DEF_ 'm' INT 0 1;~BA_DEF_ 'm' INT 0 2;~
=VERSION '1'~NS_ :~BS_:~BU_:~BA_DEF_ 'n' INT 0 1;~BA_DEF_ 'n' INT 0 3;~BA_DEF_ 'm' INT 0 2;~
VERSION '1'~// c~BS_:~BU_:~BA_DEF_ 'n' INT 0 1 ;~BA_DEF_ 'n' INT 0 3;~BA_DEF_ 'm' INT 0 02;~
>BS_:~BU_: A B~BO_ 1 M: 8 A~BO_TX_BU_ 1 : A;~BO_ 2 N: 8 B~	SG_ X M : 0|8@1+ (1,0) [0|1] '' A~	SG_ s m1 : 8|8@1+ (1,0) [0|1] '' A~BO_TX_BU_ 2 : B ;~SG_MUL_VAL_ 2 s X 1-1;~
<BS_:~BU_: A B~BO_ 1 M: 8 A~BO_ 2 N: 8 B~ SG_ X M : 0|8@1+ (1,0) [0|1] '' A~ SG_ s m1 : 8|8@1+ (1,0) [0|1] '' A~
=BS_:~BU_: A B~BO_ 1 M: 8 B~ SG_ t : 0|8@1+ (1,0) [0|1] '' A~BO_ 2 N: 8 Ostrel__XXX~ SG_ X M : 0|8@1+ (1,0) [0|1] '' A~ SG_ s m2 : 8|8@1+ (1,0) [0|1] '' A~
BS_:~BU_: A B~BO_ 1 M: 8 B~	SG_ t : 0|8@1+ (1,0) [0|1] '' A~BO_TX_BU_ 1 : B;~BO_ 2 N: 8 Ostrel__XXX~	SG_ X M : 0|8@1+ (1,0) [0|1] '' A~	SG_ s m2 : 8|8@1+ (1,0) [0|1] '' A~
>BS_: BU_: A BO_ 1 M: 8 A
<BS_:~BU_: A~BO_ 1 M: 8 A~
=BS_:~BU_: A~BO_ 1 M: 8 A~ SG_ t : 0|8@1+ (1,0) [0|1] '' A~
BS_: BU_: A BO_ 1 M: 8 A~ SG_ t : 0|8@1+ (1,0) [0|1] '' A
>BS_:~BU_: A~CM_ 'a\'b'; CM_ BU_ A 'y'; // c~#~BO_ x~
<BS_:~BU_: A~CM_ 'a\'b';~CM_ BU_ A 'y';~
=BS_:~BU_: A~CM_ 'c~d';~
BS_:~BU_: A~CM_ 'c~d'; // c~#~BO_ x~
>BS_:~BU_: A~BO_ 1 M: 8 A~
<BS_:~BU_: A~
=BS_:~BU_: A B~
none
>BS_:~BU_: A~BO_ 1 M: 8 A~BO_ 2 N: 8 A~ SG_ s : 0|8@1+ (1,0) [0|1] '' A~
<BS_:~BU_: A~BO_ 1 M: 8 A~ SG_ s : 0|8@1+ (1,0) [0|1] '' A~BO_ 2 N: 8 A~
=BS_:~BU_: A~
none
>BS_:~BU_: A B~VAL_TABLE_ t 0 'a' ;~BO_ 2 N: 8 A // n~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 t;~FILTER 1 CAT_ BU_ A  B;~
<BS_:~BU_: A B~VAL_TABLE_ t 0 'a' ;~BO_ 2 N: 8 A~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 t;~FILTER 1 CAT_ BU_ A B;~
=BS_:~BU_: A B~VAL_TABLE_ v 0 'a' ;~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 v;~FILTER 1 CAT_ BU_ B;~
BS_:~BU_: A B~VAL_TABLE_ v 0 'a' ;~SGTYPE_ y : 8@1+ (1,0) [0|1] '' 0 v;~FILTER 1 CAT_ BU_ B;~
)";

TEST(Patch, KeepsToTheText) {
  std::istringstream lines(kTable);
  std::string text, before, after, expected;
  while (std::getline(lines, text) && std::getline(lines, before) && std::getline(lines, after) &&
         std::getline(lines, expected))
    EXPECT_EQ(patched(text.substr(1), before.substr(1), after.substr(1)), expected) << text;
}

}  // namespace
}  // namespace zelk::check
