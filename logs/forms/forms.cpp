#include <algorithm>
#include <array>

#include "logs/forms/form.hpp"
#include "logs/forms/trc_columns.hpp"

namespace zelk::logs {

namespace {

constexpr std::size_t kShownBytes = 60;  // of a malformed line
constexpr std::size_t kTellingBytes = 4;

bool is_any(PeekedStream&) { return true; }

/// The magic numbers of pcap, in both orders of bytes, with microseconds and nanoseconds, and that
/// of pcapng.
bool is_capture(PeekedStream& stream) {
  constexpr std::string_view kMagics[] = {"\xA1\xB2\xC3\xD4", "\xD4\xC3\xB2\xA1",
                                          "\xA1\xB2\x3C\x4D", "\x4D\x3C\xB2\xA1",
                                          "\x0A\x0D\x0D\x0A"};
  const std::string_view magic = stream.peek(kTellingBytes).substr(0, kTellingBytes);
  return std::ranges::find(kMagics, magic) != std::end(kMagics);
}

bool is_trc(PeekedStream& stream) {
  return stream.peek(kTellingBytes).starts_with(';') || begins_with_trc_line(stream);
}

constexpr std::array kForms = {
    FormRow{{"capture", "captures of SocketCAN, pcap and pcapng"}, is_capture, open_capture},
    FormRow{{"trc", "traces in the PCAN form, versions 1.0 to 2.1"}, is_trc, open_trc},
    FormRow{
        {"candump", "lines as candump writes them, to a file or a terminal, or of frames alone"},
        is_any,
        open_candump},
};

}  // namespace

std::span<const FormRow> forms() { return kForms; }

void note_malformed(ZelkLogBlock& block, std::uint64_t number, std::string_view line) {
  ++block.counts.malformed;
  if (block.malformed.size() < ZelkLogBlock::kMostMalformed)
    block.malformed.push_back({number, std::string(line.substr(0, kShownBytes))});
}

}  // namespace zelk::logs
