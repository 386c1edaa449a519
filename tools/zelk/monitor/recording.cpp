#include "monitor/recording.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "input/lookup.hpp"
#include "log/log_copy.hpp"
#include "log/log_probe.hpp"
#include "term/system.hpp"
#include "term/text.hpp"
#include "zelk/logs/candump.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::tool {

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& why) {
  throw RequestError(fmt::format("{}: {}", escaped(path), why));
}

/// What is there may be all that there is of it: a database, another recording.
void check_is_log(const std::string& path) {
  try {
    const ZelkLogReader log(path);
    const bool is_candump = std::string_view(log.Form().name) == "candump";
    if (is_candump && log.IsDivisible() && !why_no_log(path)) return;
  } catch (const ZelkLogError&) {
    // It is no log.
  }
  fail(path, "is there, and no log of candump that frames can be appended to");
}

bool ends_within_line(const std::string& path) {
  const files::File file = files::open_for_reading(path.c_str());
  return file && std::fseek(file.get(), -1, SEEK_END) == 0 && std::fgetc(file.get()) != '\n';
}

}  // namespace

Recording::Recording(const std::string& path) : path_(path) {
  std::error_code ignored;
  const bool is_there = std::filesystem::exists(path, ignored);
  if (is_there && file_type(path) != std::filesystem::file_type::regular)
    fail(path, "no regular file, which a recording needs");
  const bool has_content = is_there && std::filesystem::file_size(path, ignored) > 0;
  if (has_content) check_is_log(path);
  const bool is_cut = has_content && ends_within_line(path);
  file_ = files::open_for_appending(path.c_str());
  if (!file_) fail(path, "cannot be written: " + std::generic_category().message(errno));
  if (is_cut) put("\n");
}

void Recording::write(const ZelkFrameBlock& frames, std::int64_t arrival) {
  if (!file_) return;
  lines_.clear();
  for (std::size_t i = 0; i < frames.Size(); ++i) {
    const std::int64_t time = frames.Times()[i];
    ZelkAppendLogLine(frames, i, kDefaultInterface, lines_, time == kZelkNoTime ? arrival : time);
  }
  put(lines_);
  frame_count_ += frames.Size();
}

void Recording::put(const std::string& lines) {
  std::error_code ignored;
  const std::uintmax_t before = std::filesystem::file_size(path_, ignored);
  if (std::fwrite(lines.data(), 1, lines.size(), file_.get()) == lines.size()) return;
  const std::string why = std::generic_category().message(errno);
  file_.reset();
  // Whole lines of these may have been written; a part of one must not stay.
  if (before != static_cast<std::uintmax_t>(-1))
    std::filesystem::resize_file(path_, before, ignored);
  fail(path_, "the recording ends: " + why);
}

}  // namespace zelk::tool
