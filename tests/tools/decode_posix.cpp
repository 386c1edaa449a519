#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

// The decoder waits behind half a line when the signal comes.
TEST(DecodeThreads, EndWholeBySignal) {
  const auto folder =
      write_file("m.dbc", "BS_:\n\nBU_: N\n\nBO_ 1 M: 1 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n\n")
          .parent_path();
  for (const char* threads : {"1", "3"}) {
    const std::string command =
        "cd '" + folder.string() +
        "' && rm -f in out.txt && mkfifo in || exit 99; '" ZELK_PROGRAM
        "' decode m.dbc --format csv --stats --threads " +
        threads +
        " <in >out.txt 2>err.txt & exec 3>in; printf 'c 001#07\\nc 001#0' >&3; "
        "until [ -s out.txt ]; do sleep 0.01; done; kill -TERM $!; wait $!";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM);
    EXPECT_EQ(bytes_of(folder / "out.txt"),
              "time,interface,id,message,signal,raw,value,unit,text\r\n,c,0x001,M,S,7,7,,\r\n");
    EXPECT_EQ(content_of(folder / "err.txt").find("lines            1\nframes           1\n"), 0u);
  }
}

// The report of the second line tells that the first one was read.
TEST(DecodeWide, CompletesFilesBySignal) {
  const auto folder =
      write_file("m.dbc", "BS_:\n\nBU_: N\n\nBO_ 1 M: 1 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n\n")
          .parent_path();
  const std::string command = "cd '" + folder.string() +
                              "' && mkfifo in || exit 99; '" ZELK_PROGRAM
                              "' decode m.dbc --wide -o out/ <in 2>err.txt & exec 3>in; "
                              "printf 'c 001#07\nno frame\nc 001#0' >&3; "
                              "until [ -s err.txt ]; do sleep 0.01; done; kill -TERM $!; wait $!";
  EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 128 + SIGTERM);
  EXPECT_EQ(bytes_of(folder / "out/M.csv"), "time,interface,S\r\n,c,7\r\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "out/.zelk-tables-0"));
}

// A disk without room is a limit on the size of files here.
TEST(DecodeWide, KeepsPermissionsAndLeavesOldFilesWhenThereIsNoRoom) {
  const auto folder =
      write_file("m.dbc",
                 "BS_:\n\nBU_: N\n\nBO_ 1 M: 1 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n\n"
                 "BO_ 2 F: 1 N\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" N\n\n")
          .parent_path();
  std::string log = "002#01\n";
  for (int i = 0; i < 5000; ++i) log += "001#07\n";
  write_file("long", log);
  const auto run = [&](const std::string& log_name) {
    const std::string command = "cd '" + folder.string() +
                                "' && umask 022 && mkdir -p out && ulimit -f 16 && '" ZELK_PROGRAM
                                "' decode m.dbc " +
                                log_name + " --wide -o out 2>err.txt";
    return WEXITSTATUS(std::system(command.c_str()));
  };
  write_file("log", "001#07\n");
  ASSERT_EQ(run("log"), 0);
  const auto file = folder / "out/M.csv";
  EXPECT_EQ(status(file).permissions(), std::filesystem::perms(0644));
  permissions(file, std::filesystem::perms(0600));
  write_file("log", "001#08\n");
  ASSERT_EQ(run("log"), 0);
  EXPECT_EQ(status(file).permissions(), std::filesystem::perms(0600));
  EXPECT_EQ(run("long"), 1);
  EXPECT_EQ(bytes_of(folder / "err.txt"),
            "zelk: out/M.csv: could not be written: File too large\n");
  EXPECT_EQ(bytes_of(file), "time,interface,S\r\n,,8\r\n");
  EXPECT_FALSE(exists(folder / "out/F.csv"));
  EXPECT_FALSE(exists(folder / "out/.zelk-tables-0"));
}

TEST(Decode, TellsWhenItWouldReadItsOutput) {
  const std::string text = "1#07\n";
  const auto log = write_file("a", text);
  write_file("m.dbc", "BS_:\nBU_:\nBO_ 1 M: 1 Ostrel__XXX\n");
  for (const std::string words : {"a", "<a", "--log a"}) {
    const std::string command = "cd '" + log.parent_path().string() +
                                "' && '" ZELK_PROGRAM "' decode m.dbc " + words + " >>a 2>err.txt";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1) << words;
    EXPECT_EQ(bytes_of(log), text) << words;
  }
}

}  // namespace
