/// \file
/// Names of interfaces in a capture of pcapng: libpcap does not give them.

#ifndef ZELK_LOGS_FORMS_PCAPNG_INTERFACES_HPP
#define ZELK_LOGS_FORMS_PCAPNG_INTERFACES_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace zelk::logs {

/// Follows the blocks of a capture while another reader takes packets out of the same bytes.
class PcapngInterfaces {
 public:
  /// The next bytes of the capture, in any pieces.
  void feed(std::string_view bytes);

  /// The name of the interface of the next packet, whose bytes were fed before; empty for none.
  /// Valid until the next call of `feed`.
  std::string_view take_packet();

 private:
  std::size_t begin_block(std::string_view bytes);
  void end_block();
  void enter_interface();
  std::uint32_t number_at(std::size_t at, std::size_t size) const;

  std::string block_;       // what is kept of the block that is being fed
  std::uint64_t left_ = 0;  // its bytes that are still to come
  bool is_broken_ = false;  // what follows is no block
  bool is_big_ = false;     // numbers of the section have the most significant byte first
  std::vector<std::string> names_;
  std::size_t first_of_section_ = 0;  // of the names
  std::deque<std::size_t> packets_;   // that were not taken, as indices of names
};

}  // namespace zelk::logs

#endif
