/// \file
/// Reading recorded logs of any form that the library knows.

#ifndef ZELK_LOGS_READER_HPP
#define ZELK_LOGS_READER_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/export.h"
#include "zelk/logs/frame.hpp"

/// A log cannot be opened or read, or is none. `what()` names it and tells why.
class ZELK_LOGS_API ZelkLogError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ZelkLogError(const ZelkLogError&) = default;
  ZelkLogError& operator=(const ZelkLogError&) = default;
  ~ZelkLogError() override;
};

/// What times of a text log are that do not tell it themselves.
enum class ZelkLogTimes : std::uint8_t {
  kDetect,       ///< differences where many times of the first lines run backwards, else points
  kPoints,       ///< points in time, or seconds since some start
  kDifferences,  ///< seconds since the frame before: they are added up
};

/// A part of a log, by its bytes in the file: the lines that begin in it, each of them whole, and
/// no others. The parts that any cuts make of a log have each of its lines once.
struct ZelkLogRange {
  std::uint64_t begin = 0;  ///< first byte
  std::uint64_t end = 0;    ///< behind the last byte; may be beyond the end of the log
};

struct ZelkLogOptions {
  /// Name of a form of `ZelkLogReader::Forms`; empty: told from the content.
  std::string form{};
  ZelkLogTimes times = ZelkLogTimes::kDetect;
  /// When it becomes true, the log ends: at once between two reads, and a wait for a pipe ends with
  /// the next bytes. May be null; must outlive the reader.
  const std::atomic<bool>* stop = nullptr;
  /// Reads one part of a log that `ZelkLogReader::IsDivisible`. Numbers of lines and blocks count
  /// from its first line, and `ZelkLogReader::BytesRead` from its first byte; the form and what the
  /// times are is told from the beginning of the log as ever.
  std::optional<ZelkLogRange> range{};
};

/// A line or packet that is no frame.
struct ZelkMalformedLine {
  std::uint64_t number;  ///< in the log, from 1
  std::string text;      ///< its first bytes
};

/// What was met in a log, or in a part of it.
struct ZelkLogCounts {
  std::uint64_t lines = 0;      ///< or packets, blank lines and comments included
  std::uint64_t frames = 0;     ///< of all kinds
  std::uint64_t malformed = 0;  ///< lines

  ZelkLogCounts& operator+=(const ZelkLogCounts& other) {
    lines += other.lines;
    frames += other.frames;
    malformed += other.malformed;
    return *this;
  }
};

/// A stretch of a log that was read and not yet parsed.
class ZELK_LOGS_API ZelkLogChunk {
 public:
  ZelkLogChunk();
  ZelkLogChunk(ZelkLogChunk&&) noexcept;
  ZelkLogChunk& operator=(ZelkLogChunk&&) noexcept;
  ~ZelkLogChunk();

 private:
  friend class ZelkLogReader;
  struct Content;
  std::unique_ptr<Content> content_;
};

/// A parsed stretch of a log.
struct ZelkLogBlock {
  /// Malformed lines of a block that are kept: the first ones.
  static constexpr std::size_t kMostMalformed = 10;

  std::uint64_t number = 0;  ///< in the log, from 0
  ZelkFrameBlock frames{};
  ZelkLogCounts counts{};
  std::vector<ZelkMalformedLine> malformed{};
};

/// A form that logs are written in.
struct ZelkLogForm {
  const char* name;         ///< "candump"
  const char* description;  ///< "lines as candump writes them, to a file or a terminal"
};

/// Reads a log, from a file or from standard input, compressed with gzip or zstd or not. Its form
/// is told from its content. A text may be in UTF-16, with a mark of its encoding, as Windows
/// PowerShell writes it.
///
/// The forms, with their times and channels:
///
/// - "candump": lines as candump writes them, to a file or a terminal, or of frames alone. Their
///   times are what `ZelkLogOptions::times` says; channels are names of interfaces.
/// - "trc": traces in the PCAN form, versions 1.0 to 2.1, also several one behind the other. Where
///   the head is lost, the words of the lines tell the version. Times are offsets from the start of
///   the trace, which is added where the trace has it: it is the recorder's local time, of a zone
///   that nobody tells, and is taken for UTC. Otherwise, as in version 1.0, they count from 0.
///   Channels are numbers of buses, or empty in versions 1.0 and 1.1. A status, an event and
///   counters are neither frames nor malformed.
/// - "capture": captures of SocketCAN in pcap and pcapng, of CAN interfaces or with the "cooked"
///   headers of any interface (SLL, SLL2). Channels are the names of interfaces that pcapng has, or
///   with SLL2 the numbers that the recording machine had for them, or else empty. Captures of
///   interfaces of several kinds are read up to the first one of another kind, which is an error.
///   Packets that are not of CAN are neither frames nor malformed. Not on Windows.
///
/// Error frames have the form of SocketCAN: classes of errors as identifier, details as data.
///
/// The reading itself is done by one thread at a time; parsing, which takes most of the time, by
/// any number of them:
///
///     ZelkLogReader reader("drive.log");    // each thread:
///     ZelkLogChunk chunk;
///     ZelkLogBlock block;
///     while (reader.Take(chunk)) {
///       reader.Parse(chunk, block);         // block.number tells the order
///     }
///
/// `Take` may be called by all of them, and waits for its turn.
class ZELK_LOGS_API ZelkLogReader {
 public:
  /// Opens a log and reads its beginning.
  ///
  /// @param path  in the system's encoding of file names; none: standard input
  /// @throws ZelkLogError when it cannot be opened, is of no known form, or `options.form` is
  /// unknown, or `options.range` is given
  /// for a log that is not divisible
  explicit ZelkLogReader(const std::optional<std::string>& path, ZelkLogOptions options = {});
  ZelkLogReader(const ZelkLogReader&) = delete;
  ZelkLogReader& operator=(const ZelkLogReader&) = delete;
  ~ZelkLogReader();

  /// All forms, in the order in which they are tried.
  static std::vector<ZelkLogForm> Forms();

  /// Reads and parses the next stretch: `Take` and `Parse`.
  ///
  /// @return false at the end of the log
  /// @throws ZelkLogError
  bool Next(ZelkLogBlock& block);

  /// Reads the next stretch. What pipes have is given out as it comes.
  ///
  /// @return false at the end of the log
  /// @throws ZelkLogError when the log cannot be read further, each time; what stands in front of
  /// that, was given out before
  bool Take(ZelkLogChunk& chunk);
  /// Makes frames of a stretch, in place of what the block held.
  ///
  /// @throws std::bad_alloc
  void Parse(ZelkLogChunk& chunk, ZelkLogBlock& block) const;

  /// What to call the log in a report: its path, or "standard input".
  const std::string& Name() const;
  /// The form of the log; one of `Forms()`.
  ZelkLogForm Form() const;
  /// Whether parts of the log can be read each alone: a text in a regular file, neither compressed
  /// nor in UTF-16, the lines of which need none in front of them. Those of candump do not, unless
  /// their times are differences.
  bool IsDivisible() const;
  /// Bytes of a log in a regular file, as they are on the disk; none for others.
  std::optional<std::uint64_t> SizeBytes() const;
  /// Bytes read so far, likewise. May be asked while another thread reads.
  std::uint64_t BytesRead() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
