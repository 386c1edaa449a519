/// \file
/// Packets of a capture, read by libpcap.

#ifndef ZELK_LOGS_FORMS_CAPTURE_FILE_POSIX_HPP
#define ZELK_LOGS_FORMS_CAPTURE_FILE_POSIX_HPP

#include <pcap/pcap.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "logs/forms/packet.hpp"
#include "logs/forms/pcapng_interfaces.hpp"
#include "logs/input/byte_stream.hpp"

namespace zelk::logs {

/// The bytes of a stream, for a `FILE`.
struct CaptureBytes {
  std::unique_ptr<ByteStream> stream;
  bool is_next_generation;  ///< pcapng
  PcapngInterfaces interfaces{};
  std::exception_ptr fault{};  ///< that has ended them

  std::ptrdiff_t read(char* buffer, std::size_t size) noexcept;
};

/// A packet, valid until the next one is read.
struct CapturedPacket {
  std::int64_t time;
  std::string_view interface;  ///< its name; empty when the capture has none
  Packet packet;
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
  /// Whether `next` has a packet without waiting for one; if in doubt, it has none.
  bool has_packet() const;

 private:
  struct Close {
    void operator()(pcap_t* capture) const noexcept { pcap_close(capture); }
  };

  [[noreturn]] void fail(const char* what) const;

  std::string name_;
  bool is_big_;  // numbers have the most significant byte first
  CaptureBytes bytes_;
  std::array<char, 1 << 16> buffer_;
  std::FILE* file_;                         // reads `bytes_` into `buffer_`
  std::unique_ptr<pcap_t, Close> capture_;  // reads `file_`, and closes it
  LinkType link_type_{};
};

}  // namespace zelk::logs

#endif
