/// \file
/// Packets of a capture, read by libpcap.

#ifndef ZELK_LOGS_FORMS_CAPTURE_FILE_POSIX_HPP
#define ZELK_LOGS_FORMS_CAPTURE_FILE_POSIX_HPP

#include <pcap/pcap.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include "logs/forms/packet.hpp"
#include "logs/input/byte_stream.hpp"

namespace zelk::logs {

/// The bytes of a stream, as a `FILE` that is not buffered reads them.
class CaptureBytes {
 public:
  explicit CaptureBytes(std::unique_ptr<PeekedStream> stream);

  /// Up to `size` bytes; negative for a fault, which `rethrow_fault` throws.
  std::ptrdiff_t read(char* buffer, std::size_t size) noexcept;
  void rethrow_fault() const;
  /// Whether a whole packet has been read and not yet given out; if in doubt, none has.
  bool has_packet() const;

 private:
  std::unique_ptr<PeekedStream> stream_;
  std::array<char, 1 << 16> bytes_;
  std::size_t begin_ = 0;  // of those that have not been given out
  std::size_t end_ = 0;
  std::exception_ptr fault_;
  bool is_big_;              // numbers have the most significant byte first
  bool is_next_generation_;  // pcapng
};

struct CapturedPacket {
  std::int64_t time;
  Packet packet;  ///< valid until the next one is read
};

class CaptureFile {
 public:
  /// @param name  for errors
  /// @throws ZelkLogError when it is no capture, or one of no CAN
  CaptureFile(std::unique_ptr<PeekedStream> stream, std::string name);

  LinkType link_type() const { return link_type_; }

  /// Reads the next packet.
  ///
  /// @return false at the end
  /// @throws ZelkLogError
  bool next(CapturedPacket& packet);
  /// Whether `next` has a packet without waiting for one.
  bool has_packet() const { return bytes_.has_packet(); }

 private:
  struct Close {
    void operator()(pcap_t* capture) const noexcept { pcap_close(capture); }
  };

  std::string name_;
  CaptureBytes bytes_;
  std::unique_ptr<pcap_t, Close> capture_;  // reads `bytes_`
  LinkType link_type_{};
};

}  // namespace zelk::logs

#endif
