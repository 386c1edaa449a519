#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "logs/forms/lines.hpp"
#include "support/memory_stream.hpp"

namespace zelk::logs {
namespace {

using namespace std::string_literals;

/// A member of gzip, by `gzip -n`: its header, and the whole of it.
const std::string kGzipHeader = "\x1F\x8B\x08\0\0\0\0\0\0\x03"s;
const std::string kGzip =
    kGzipHeader + "\x33\x74\x34\x50\xE6\x32\x72\x02\x12\0\x91\xC5\xBA\xE7\x0A\0\0\0"s;
/// A frame of zstd with two blocks that are not compressed: up to the second one, and all of it.
const std::string kZstdBegin = "\x28\xB5\x2F\xFD\x20\x0A\x28\0\0"s + "1A0#\n";
const std::string kZstd = kZstdBegin + "\x29\0\0"s + "2B0#\n";
/// Two lines, with a mark of their encoding.
const std::string kUtf16 =
    "\xFF\xFE"
    "1\0#\0\n\0"s +
    "\xE4\0\x3D\xD8\x00\xDE"s;

/// What a log is made of: its text, then the error that ended it, in braces.
std::string text_of(const std::string& bytes, std::size_t most) {
  std::string text;
  try {
    const auto stream = in_utf8(decompressed(std::make_unique<MemoryStream>(bytes, most), "log"));
    std::string buffer(most, '\0');
    while (const std::size_t count = stream->read(buffer.data(), buffer.size()))
      text.append(buffer, 0, count);
  } catch (const ZelkLogError& error) {
    text += "{" + std::string(error.what()) + "}";
  }
  return text;
}

TEST(LogInput, IsUnpackedAndGivesWhatStandsInFrontOfAFault) {
  const std::string text = "1A0#\n2B0#\n";
  const struct {
    std::string bytes;
    std::string text;
  } cases[] = {
      {"", ""},
      {"1", "1"},
      {"\x1F", "\x1F"},
      {kGzip, text},
      {kGzip + kGzip + "\0\0\0"s, text + text},
      {kGzip + "123#\n",
       text + "{log: behind the data compressed with gzip stands something else}"},
      {kGzip.substr(0, kGzip.size() - 1),
       text + "{log: the data compressed with gzip ends in its midst}"},
      {kGzip.substr(0, 4), "{log: the data compressed with gzip ends in its midst}"},
      {kGzip.substr(0, kGzip.size() - 8) + std::string(8, '\0'),
       text + "{log: the data compressed with gzip is damaged}"},
      {kGzipHeader + "\0\5\0\xFA\xFF"s + "1A0#\n\x07",  // a block, and one of an unknown kind
       "1A0#\n{log: the data compressed with gzip is damaged}"},
      // Faults that come while the first bytes of the text are looked at.
      {kGzipHeader + "\0\2\0\xFD\xFF"s + "1A\x07",
       "1A{log: the data compressed with gzip is damaged}"},
      {kGzipHeader + "\x07", "{log: the data compressed with gzip is damaged}"},
      {kZstd, text},
      {kZstd + kZstd, text + text},
      {kZstdBegin, "1A0#\n{log: the data compressed with zstd ends in its midst}"},
      {kZstdBegin + "\x2F\0\0"s + "2B0#\n",
       "1A0#\n{log: the data compressed with zstd is damaged: Data corruption detected}"},
      // Its header promises a byte more than its blocks have, which takes the last one with it.
      {std::string(kZstd).replace(5, 1, "\x0B"),
       "1A0#\n2B0#{log: the data compressed with zstd is damaged: Data corruption detected}"},
      {kZstd + "123#\n",
       text + "{log: the data compressed with zstd is damaged: Unknown frame descriptor}"},
      {"\xFD"
       "7zXZ\0"s,
       "{log is compressed with xz, which is not read here; gzip and zstd are}"},
      {"\xEF\xBB\xBF"
       "1#",
       "1#"},
      {kUtf16, "1#\n\xC3\xA4\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xFF\xFE\xFF\xDF\0\xE0"s, "\xEF\xBF\xBD\xEE\x80\x80"},
      {"\xFE\xFF\0"
       "1\0"s,
       "1"},
  };
  for (const auto& each : cases) {
    for (const std::size_t most : {1, 2, 5, 1000})
      EXPECT_EQ(text_of(each.bytes, most), each.text) << testing::PrintToString(each.bytes);
  }
}

// How a line is cut must not depend on how its bytes arrive.
TEST(LogInput, RefusesLinesThatAreTooLong) {
  const std::string frame = "123#FF";
  const std::string blanks(kLongestLine - frame.size(), ' ');
  const std::string text = blanks + frame + '\n' + blanks + ' ' + frame + '\n' + frame;
  for (const std::size_t most : {10, 1000, 1 << 20}) {
    EXPECT_THAT(
        parsed(*open_candump(memory_input(text, most))),
        testing::UnorderedElementsAre("- 123 0 FF", "2: " + std::string(60, ' '), "- 123 0 FF"))
        << most;
  }
}

}  // namespace
}  // namespace zelk::logs
