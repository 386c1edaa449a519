// Checks of several threads at once: of readings of their own, and of one that they share. The
// thread sanitizer finds what else they share.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/encoding.hpp"
#include "check/diff/differences.hpp"
#include "check/faults/diagnose.hpp"
#include "check/includes/mend.hpp"
#include "check/lint/lint.hpp"
#include "check/patch/patch.hpp"
#include "check/picture/message_picture.hpp"
#include "check/records/strict_reading.hpp"
#include "support/files.hpp"
#include "support/paths.hpp"
#include "support/threads.hpp"
#include "zelk/manager.hpp"

namespace zelk::check {
namespace {

constexpr char kEveryStatement[] = ZELK_SOURCE_DIR "/tests/data/ok_every_statement.dbc";

/// Faults and mends of several kinds.
constexpr char kBroken[] =
    "BU_: A\nBO_ 1 M: 8 B\n SG_ s : 0|8@1+ (1,0) [0|1] \"\" C\n SG_ s : 8|8@1+ (1,0) [0|1] \"\" A\n"
    "BA_ \"None\" 7;\nVAL_ 1 t 1 \"x\" ;\nBS_:\nCM_ \"IMPORT other\";\nBO_ 2 N: 4 A\n SG_ x";

std::string text_of(const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings.list) {
    text += std::to_string(finding.span.begin) + ' ' + finding.message + '\n';
  }
  return text;
}

/// What checks work on, and may work on at once.
struct Readings {
  static Document read(const std::string& text) { return read_document(Source("x.dbc", text)); }
  EncodedDatabase opened(const char* path) {
    const char* db = nullptr;
    manager.OpenDatabase(path, &db, 0);
    return {*manager.GetConstDatabase(db), Encoding::kUtf8};
  }

  const std::string text = bytes_of(kEveryStatement);
  const Document document = read(text), edited = read(text + "CM_ BU_ E \"edited\";\n");
  const Document broken = read(kBroken);
  const Names names{document};
  const StrictReading records{text};
  ZelkManager manager{HWND{}};
  const EncodedDatabase every = opened(kEveryStatement);
  const EncodedDatabase other = opened(ZELK_SOURCE_DIR "/examples/powertrain.dbc");
};

/// Each check, and what came of it.
std::vector<std::string> results_of(const Readings& r) {
  std::string differences;
  for_each_difference(r.every, r.other, [&](const Difference& difference) {
    differences += difference.object.name_text() + ' ' + std::to_string(difference.changes.size());
  });
  const auto patched = patch(r.document, r.document, r.edited);
  const MendedFile mended = mend(r.broken.source, {});
  return {text_of(diagnose(r.broken, 0)),
          text_of(lint(r.document, r.names, r.records.view(), {}, 0).findings),
          mended.text + text_of(mended.mends),
          differences,
          patched ? patched->text : "not patched",
          message_picture(*r.other.records.messages, Encoding::kUtf8)};
}

TEST(CheckThreads, FindWhatOneFinds) {
  const Readings shared;
  const std::vector<std::string> alone = results_of(shared);
  for (const std::string& result : alone) EXPECT_GT(result.size(), 40U) << result;
  const auto check = [&](int, int round) {
    EXPECT_EQ(round == 0 ? results_of(shared) : results_of(Readings()), alone);
  };
  run_in_threads(check, 2);
}

}  // namespace
}  // namespace zelk::check
