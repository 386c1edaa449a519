#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "support/paths.hpp"
#include "tools/run_tool.hpp"

namespace {

struct HandleCloser {
  void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

using Handle = std::unique_ptr<void, HandleCloser>;

SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};

Handle open_file(const std::filesystem::path& path, DWORD access, DWORD creation) {
  return Handle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                            creation, FILE_ATTRIBUTE_NORMAL, nullptr));
}

Handle open_input(const std::filesystem::path& folder, const std::string& input) {
  const std::filesystem::path name(std::u8string(input.begin(), input.end()));
  return open_file(input.empty() ? "NUL" : folder / name, GENERIC_READ, OPEN_EXISTING);
}

Handle open_output(const std::filesystem::path& folder, Output output) {
  if (output == Output::kFile) return open_file(folder / "out.txt", GENERIC_WRITE, CREATE_ALWAYS);
  if (output == Output::kRefused) return open_file("NUL", GENERIC_READ, OPEN_EXISTING);
  HANDLE read_end = nullptr, write_end = nullptr;
  CreatePipe(&read_end, &write_end, &inherited, 0);
  CloseHandle(read_end);
  return Handle(write_end);
}

std::wstring command_line(const std::string& arguments) {
  const auto program = std::filesystem::absolute(ZELK_PROGRAM).make_preferred();
  const std::filesystem::path wide_arguments(std::u8string(arguments.begin(), arguments.end()));
  return L"\"" + program.wstring() + L"\" " + wide_arguments.wstring();
}

}  // namespace

int run_program(const std::filesystem::path& folder, const std::string& arguments, Output output,
                const std::string& input) {
  const Handle in = open_input(folder, input);
  const Handle out = open_output(folder, output);
  const Handle err = open_file(folder / "err.txt", GENERIC_WRITE, CREATE_ALWAYS);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in.get();
  startup.hStdOutput = out.get();
  startup.hStdError = err.get();
  PROCESS_INFORMATION started = {};
  std::wstring command = command_line(arguments);
  const auto start = [&] {
    constexpr BOOL kInheritHandles = TRUE;
    return CreateProcessW(nullptr, command.data(), nullptr, nullptr, kInheritHandles, 0, nullptr,
                          folder.c_str(), &startup, &started) != 0;
  };
  bool is_started = start();
  // Wine gives up when its server is busy for too long.
  for (int i = 0; !is_started && GetLastError() == ERROR_INTERNAL_ERROR && i < 5; ++i) {
    Sleep(1000);
    is_started = start();
  }
  if (!is_started) {
    ADD_FAILURE() << "cannot start " ZELK_PROGRAM << ", error " << GetLastError();
    return -1;
  }
  const Handle process(started.hProcess), thread(started.hThread);
  DWORD exit_code = 0;
  WaitForSingleObject(process.get(), INFINITE);
  GetExitCodeProcess(process.get(), &exit_code);
  return static_cast<int>(exit_code);
}
