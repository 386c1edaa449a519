#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "support/files.hpp"
#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

std::string run(const std::string& command) {
  const auto folder = write_file("a", "(1) c 001#07\n").parent_path();
  const int status = std::system(
      ("cd '" + folder.string() + "' && zelk='" ZELK_PROGRAM "'; (" + command + ") 2>err.txt")
          .c_str());
  return std::to_string(WEXITSTATUS(status)) + ' ' + bytes_of(folder / "err.txt");
}

// A recording that the user ends is kept, but does not take the place of an older file. The reader
// waits behind half a line when the signal comes.
TEST(LogThreads, EndWholeBySignal) {
  const std::string command =
      "rm -f in; mkfifo in || exit 99; $zelk log in -o out --stats --threads 3 & exec 3>in; "
      "printf '(1) c 001#07\\n(2) c 001#0' >&3; until [ -s .out.zelk-* ]; do sleep 0.01; done; "
      "kill -TERM $!; { wait $!; } 2>/dev/null; status=$?; cat out >&2; exit $status";
  const std::string counts =
      "lines            1\nframes           1\n  written        1\nmalformed lines  0\n";
  EXPECT_EQ(run(command), "143 " + counts + "(1.000000) c 001#07\n");
  write_file("out", "old\n");
  EXPECT_EQ(run(command), "143 out: interrupted, and left as it was\n" + counts + "old\n");
}

TEST(Log, TellsWhenItWouldReadItsOutput) {
  const std::string links = "rm -f b c p; ln a b; ln -s b c; mkfifo p; ";
  for (const char* command :
       {"$zelk log a >>a", "$zelk log - <a >>a", "$zelk log a -o b", "$zelk log - <a -o c",
        "$zelk log /dev/stdin <b -o a", "$zelk log c -o /dev/stdout >>a", "$zelk log p -o p"})
    EXPECT_NE(run(links + command).find("is both a log to read and the output\n"),
              std::string::npos)
        << command;
  for (const char* command : {"$zelk log a b", "$zelk log c b", "$zelk log - c <a",
                              "$zelk log - /dev/stdin <p & : >p; wait $!"})
    EXPECT_NE(run(links + command).find(" is given twice\n"), std::string::npos) << command;
  EXPECT_EQ(run("$zelk log a -o /dev/full"),
            "1 zelk: /dev/full: could not be written: No space left on device\n");
}

}  // namespace
