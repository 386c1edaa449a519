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

/// A file that reads the bytes. libpcap asks for what it needs: without a buffer none is read
/// ahead.
std::FILE* file_of(CaptureBytes& bytes) {
  std::FILE* const file = fopencookie(&bytes, "r", {read_bytes, nullptr, nullptr, nullptr});
  if (!file) throw std::bad_alloc();
  std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
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

CaptureBytes::CaptureBytes(std::unique_ptr<PeekedStream> stream) : stream_(std::move(stream)) {
  const std::string_view magic = stream_->peek(kNextGenerationMagic.size());
  is_next_generation_ = magic.starts_with(kNextGenerationMagic);
  is_big_ = magic.starts_with(kFirstOfBig);
}

std::ptrdiff_t CaptureBytes::read(char* buffer, std::size_t size) noexcept {
  try {
    if (begin_ == end_) {
      begin_ = end_ = 0;
      end_ = stream_->read(bytes_.data(), bytes_.size());
    }
  } catch (...) {
    fault_ = std::current_exception();
    return -1;
  }
  const std::size_t count = std::min(size, end_ - begin_);
  std::copy_n(bytes_.data() + begin_, count, buffer);
  begin_ += count;
  return static_cast<std::ptrdiff_t>(count);
}

void CaptureBytes::rethrow_fault() const {
  if (fault_) std::rethrow_exception(fault_);
}

/// The header of a packet has the number of its bytes: in pcap those that follow the header, in
/// pcapng, whose sections may have different orders of bytes, all of them.
bool CaptureBytes::has_packet() const {
  constexpr std::size_t kHeaderBytes = 16;
  const std::size_t count = end_ - begin_;
  if (count < kHeaderBytes) return false;
  const char* const at = bytes_.data() + begin_ + (is_next_generation_ ? 4 : 8);
  std::size_t little = 0;
  std::size_t big = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t byte = static_cast<unsigned char>(at[i]);
    little |= byte << (8 * i);
    big = big << 8 | byte;
  }
  if (is_next_generation_) return count >= std::min(little, big);
  return count - kHeaderBytes >= (is_big_ ? big : little);
}

CaptureFile::CaptureFile(std::unique_ptr<PeekedStream> stream, std::string name)
    : name_(std::move(name)), bytes_(std::move(stream)) {
  std::FILE* const file = file_of(bytes_);
  std::array<char, PCAP_ERRBUF_SIZE> fault{};
  capture_.reset(
      pcap_fopen_offline_with_tstamp_precision(file, PCAP_TSTAMP_PRECISION_NANO, fault.data()));
  if (!capture_) {
    std::fclose(file);
    bytes_.rethrow_fault();
    throw ZelkLogError(name_ + ": " + fault.data());
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
  if (result != 1) {
    bytes_.rethrow_fault();
    throw ZelkLogError(name_ + ": " + pcap_geterr(capture_.get()));
  }
  const std::size_t kept = std::min<std::size_t>(header->caplen, kMostPacketBytes);
  packet = {time_of(header->ts), {{bytes, kept}, header->len}};
  return true;
}

}  // namespace zelk::logs
