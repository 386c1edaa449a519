#include <sys/wait.h>

#include <cstdlib>

#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

std::string redirected(const std::string& command, Output output) {
  switch (output) {
    case Output::kRefused:
      return command + " >/dev/full";
    case Output::kClosedPipe:
      return "{ " + command + "; echo $? >status.txt; } | true; exit $(cat status.txt)";
    default:
      return command + " >out.txt";
  }
}

}  // namespace

int run_program(const std::filesystem::path& folder, const std::string& arguments, Output output,
                const std::string& input) {
  const std::string source = input.empty() ? "/dev/null" : input;
  const std::string command =
      redirected("'" ZELK_PROGRAM "' " + arguments + " <'" + source + "' 2>err.txt", output);
  const int status = std::system(("cd '" + folder.string() + "' && " + command).c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
