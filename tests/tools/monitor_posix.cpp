#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

constexpr const char* kDatabase =
    "BS_:\nBU_: N\nBO_ 1 M: 1 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n"
    "BA_DEF_ BO_ \"GenMsgCycleTime\" INT 0 9999;\nBA_DEF_DEF_ \"GenMsgCycleTime\" 20;\n";

/// The exit code of a command in the test's folder, and what it printed.
std::string run(const std::string& command) {
  const auto folder = write_file("m.dbc", kDatabase).parent_path();
  const int status = std::system(
      ("cd '" + folder.string() + "' && zelk='" ZELK_PROGRAM "'; (" + command + ") >out.txt 2>&1")
          .c_str());
  return std::to_string(WEXITSTATUS(status)) + ' ' + bytes_of(folder / "out.txt");
}

// What came is shown while the pipe is open, a message that stops is missed, and a signal leaves a
// recording of whole lines behind.
TEST(MonitorThreads, ShowFramesAsTheyCome) {
  const std::string text = run(
      "rm -f in now record; mkfifo in || exit 99; "
      "$zelk monitor m.dbc --format csv --every 20ms --record record <in >now & exec 3>in; "
      "printf '(1.5) c 001#07\\n(1.51) c 0' >&3; until grep -qs ',missing,1,' now; do sleep 0.01; "
      "done; kill -TERM $!; { wait $!; } 2>/dev/null; echo $?; cat record; "
      "grep -c ',M,,missing,1,0,,,20,0,.*,07,S,7,,' now");
  EXPECT_EQ(text, "0 143\n(1.500000) c 001#07\n1\n");
}

TEST(MonitorThreads, EndWithTheirInputAndTheirReader) {
  EXPECT_EQ(run("printf '(1.5) c 001#07\\n(1.51) c 001#08\\n' | $zelk monitor m.dbc --plain | "
                "sed -n '1p;$p'"),
            "0 (1.510000) 2 frames\nc          0x001  M        -     S       8      -     -\n");
  EXPECT_EQ(run("(printf '(1.5) c 001#07\\n'; sleep 1; printf '(2.5) c 001#07\\n') | "
                "$zelk monitor m.dbc --plain --every 10ms | head -n 1 >/dev/null; echo $?"),
            "0 0\n");
}

// A disk without room is a limit on the size of files here.
TEST(MonitorThreads, KeepWholeLinesWhenARecordingHasNoRoom) {
  std::string log;
  for (int i = 0; i < 40000; ++i) log += "(1.5) c 001#07\n";
  write_file("log", log);
  for (const char* how : {"--once", "--speed max --format json"}) {
    const std::string text =
        run("rm -f record; (ulimit -f 64; $zelk monitor m.dbc --replay log " + std::string(how) +
            " --record record >all); echo $?; grep -cv '#07$' record; "
            "tail -c 1 record | od -An -c");
    EXPECT_NE(text.find("record: the recording ends: File too large\n1\n0\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\\n"), std::string::npos) << text;
  }
}

// At ten times its speed, a log of a second takes a tenth; the order of frames stays.
TEST(MonitorThreads, ReplayALog) {
  write_file("log", "(90001) c 001#01\n(90001.5) c 001#02\n(90000.2) c 001#03\n(90002) c 001#04\n");
  EXPECT_EQ(
      run("rm -f record; $zelk monitor m.dbc --replay log --speed 10 --every 10s --format csv "
          "--record record | tail -n 1; cat record"),
      "0 90002.000000,c,0x001,M,,,4,3,1150,650,20,2,0,04,S,4,,\r\n(90001.000000) c 001#01\n"
      "(90001.500000) c 001#02\n(90000.200000) c 001#03\n(90002.000000) c 001#04\n");
}

}  // namespace
