/// \file
/// The bytes of logs, from files and pipes, as they were before they were compressed.

#ifndef ZELK_LOGS_INPUT_BYTE_STREAM_HPP
#define ZELK_LOGS_INPUT_BYTE_STREAM_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "zelk/logs/reader.hpp"

namespace zelk::logs {

/// Bytes that are read one after the other, by one thread at a time.
class ByteStream {
 public:
  ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  virtual ~ByteStream() = default;

  /// Reads what is there, and waits only while nothing is.
  ///
  /// @param size  at least 1
  /// @return number of bytes put into `buffer`; 0 at the end
  /// @throws ZelkLogError; all bytes in front of the fault were given out before
  virtual std::size_t read(char* buffer, std::size_t size) = 0;
  /// Whether the bytes are those of a regular file, as they stand in it.
  virtual bool is_file() const { return false; }
};

/// What is read of a compressed stream at a time.
inline constexpr std::size_t kInputBytes = 1 << 16;

/// The bytes on the disk or in the pipe.
class FileStream : public ByteStream {
 public:
  /// @param path  in the system's encoding of file names; none: standard input
  /// @param stop  when it becomes true, the file ends; may be null
  /// @throws ZelkLogError when the file cannot be opened
  FileStream(const std::optional<std::string>& path, const std::atomic<bool>* stop);
  ~FileStream() override;

  std::size_t read(char* buffer, std::size_t size) override;
  bool is_file() const override { return size_.has_value(); }

  /// Reads on from there, of a regular file; beyond its end there is nothing.
  ///
  /// @throws ZelkLogError
  void seek(std::uint64_t offset_bytes);

  /// What to call it.
  const std::string& name() const { return name_; }
  /// Of a regular file.
  std::optional<std::uint64_t> size() const { return size_; }
  /// Any thread may ask.
  std::uint64_t bytes_read() const { return bytes_read_; }

 private:
  struct File;

  std::string name_;
  std::unique_ptr<File> file_;
  const std::atomic<bool>* stop_;
  std::optional<std::uint64_t> size_;
  std::atomic<std::uint64_t> bytes_read_ = 0;
};

/// A stream whose first bytes were read before.
class PeekedStream : public ByteStream {
 public:
  explicit PeekedStream(std::unique_ptr<ByteStream> rest) : rest_(std::move(rest)) {}

  std::size_t read(char* buffer, std::size_t size) override;
  bool is_file() const override { return rest_->is_file(); }

  /// Reads until there are `size` bytes or the stream has ended, at most; waits for no more bytes
  /// than that.
  ///
  /// @return all bytes that were peeked at and not read, valid until the next call
  /// @throws ZelkLogError when there is a fault in front of the first byte
  std::string_view peek(std::size_t size);

  /// Reads on, and until a line feed is among the bytes, with at most `most` bytes; of what comes
  /// as it is recorded, no more than has come.
  ///
  /// @return as `peek`
  std::string_view peek_line(std::size_t most);

 private:
  bool peek_more(std::size_t most);

  std::unique_ptr<ByteStream> rest_;
  std::string peeked_;
  std::size_t taken_ = 0;              // of it
  std::optional<ZelkLogError> fault_;  // behind it
};

/// The bytes that a stream had before it was compressed with gzip or zstd, which its first bytes
/// tell; the stream itself when it was not.
///
/// @param name  of the log, for errors
std::unique_ptr<ByteStream> decompressed(std::unique_ptr<ByteStream> stream,
                                         const std::string& name);

/// A text in UTF-8, without the mark of its encoding, that may be in UTF-16 with such a mark, as
/// Windows PowerShell writes it; all else, binary data too, is not changed.
std::unique_ptr<PeekedStream> in_utf8(std::unique_ptr<ByteStream> stream);

/// The lines of a regular file that begin in a part of it.
///
/// @throws ZelkLogError
std::unique_ptr<ByteStream> lines_in(std::unique_ptr<FileStream> file, const ZelkLogRange& range);

std::unique_ptr<ByteStream> gzip_stream(std::unique_ptr<ByteStream> stream, std::string name);
std::unique_ptr<ByteStream> zstd_stream(std::unique_ptr<ByteStream> stream, std::string name);

}  // namespace zelk::logs

#endif
