#include "logs/forms/capture_file_posix.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "logs/forms/times.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

namespace {

constexpr LinkType kLinkTypes[] = {LinkType::kSocketCan, LinkType::kCooked, LinkType::kCooked2};

constexpr std::string_view kNextGenerationMagic = "\x0A\x0D\x0D\x0A";
constexpr char kFirstOfBig = '\xA1';  // of the magic number

ssize_t read_bytes(void* cookie, char* buffer, std::size_t size) {
  return static_cast<CaptureBytes*>(cookie)->read(buffer, size);
}

std::int64_t time_of(const timeval& time) {
  constexpr std::int64_t kMostSeconds = INT64_MAX / kNanosecondsPerSecond - 10;
  const auto seconds = static_cast<std::int64_t>(time.tv_sec);
  if (seconds < -kMostSeconds || seconds > kMostSeconds) return kZelkNoTime;
  // libpcap puts nanoseconds in the place of microseconds.
  return seconds * kNanosecondsPerSecond + static_cast<std::int64_t>(time.tv_usec);
}

std::string link_type_name(int type) {
  const char* const name = pcap_datalink_val_to_description(type);
  return name ? name : "link type " + std::to_string(type);
}

}  // namespace

std::ptrdiff_t CaptureBytes::read(char* buffer, std::size_t size) noexcept {
  try {
    const std::size_t count = stream->read(buffer, size);
    if (is_next_generation) interfaces.feed({buffer, count});
    return static_cast<std::ptrdiff_t>(count);
  } catch (...) {
    // It must not pass through libpcap.
    fault = std::current_exception();
    return -1;
  }
}

CaptureFile::CaptureFile(std::unique_ptr<PeekedStream> stream, std::string name)
    : name_(std::move(name)) {
  const std::string_view magic = stream->peek(kNextGenerationMagic.size());
  bytes_.is_next_generation = magic.starts_with(kNextGenerationMagic);
  is_big_ = magic.starts_with(kFirstOfBig);
  bytes_.stream = std::move(stream);
  file_ = fopencookie(&bytes_, "r", {read_bytes, nullptr, nullptr, nullptr});
  if (!file_) throw std::bad_alloc();
  static_cast<void>(std::setvbuf(file_, buffer_.data(), _IOFBF, buffer_.size()));
  std::array<char, PCAP_ERRBUF_SIZE> fault{};
  capture_.reset(
      pcap_fopen_offline_with_tstamp_precision(file_, PCAP_TSTAMP_PRECISION_NANO, fault.data()));
  if (!capture_) {
    static_cast<void>(std::fclose(file_));
    fail(fault.data());
  }
  const int type = pcap_datalink(capture_.get());
  link_type_ = static_cast<LinkType>(type);
  if (std::ranges::find(kLinkTypes, link_type_) == std::end(kLinkTypes)) {
    throw ZelkLogError(name_ + ": the capture is not one of SocketCAN, but of " +
                       link_type_name(type));
  }
}

bool CaptureFile::next(CapturedPacket& packet) {
  pcap_pkthdr* header = nullptr;
  const u_char* bytes = nullptr;
  const int result = pcap_next_ex(capture_.get(), &header, &bytes);
  if (result == PCAP_ERROR_BREAK) return false;
  if (result != 1) fail(pcap_geterr(capture_.get()));
  const std::size_t kept = std::min<std::size_t>(header->caplen, kMostPacketBytes);
  packet = {time_of(header->ts), bytes_.interfaces.take_packet(), {{bytes, kept}, header->len}};
  return true;
}

/// The header of a packet has the number of its bytes: in pcap those that follow the header, in
/// pcapng, whose sections may have different orders of bytes, all of them.
bool CaptureFile::has_packet() const {
  constexpr std::size_t kHeaderBytes = 16;
  // What stdio has read ahead: glibc has no function for it.
  const auto count = static_cast<std::size_t>(file_->_IO_read_end - file_->_IO_read_ptr);
  if (count < kHeaderBytes) return false;
  const char* const at = file_->_IO_read_ptr + (bytes_.is_next_generation ? 4 : 8);
  std::size_t little = 0;
  std::size_t big = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t byte = static_cast<unsigned char>(at[i]);
    little |= byte << (8 * i);
    big = big << 8 | byte;
  }
  if (bytes_.is_next_generation) return count >= std::min(little, big);
  return count - kHeaderBytes >= (is_big_ ? big : little);
}

void CaptureFile::fail(const char* what) const {
  if (bytes_.fault) std::rethrow_exception(bytes_.fault);
  throw ZelkLogError(name_ + ": " + what);
}

}  // namespace zelk::logs
