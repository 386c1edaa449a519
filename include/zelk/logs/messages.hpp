/// \file
/// The messages of frames.

#ifndef ZELK_LOGS_MESSAGES_HPP
#define ZELK_LOGS_MESSAGES_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "zelk/database.hpp"
#include "zelk/export.h"

/// What the databases have for a frame.
struct ZelkFoundMessage {
  const msgblk* message = nullptr;  ///< null: none
  std::size_t database = 0;         ///< index in the order of `ZelkMessageFinder::AddDatabase`
};

/// Finds the message of a frame as all decoders do: of several databases, the first one with the
/// frame's identifier counts, or else the first one with its J1939 parameter group.
///
/// Databases are added first, by one thread. Then any number of threads may `Find`.
class ZELK_LOGS_API ZelkMessageFinder {
 public:
  /// @param match_groups  as in `ZelkColumnOptions`
  explicit ZelkMessageFinder(bool match_groups = false);
  ZelkMessageFinder(const ZelkMessageFinder&) = delete;
  ZelkMessageFinder& operator=(const ZelkMessageFinder&) = delete;
  ~ZelkMessageFinder();

  /// See `ZelkColumnDecoder::AddDatabase`.
  ///
  /// @throws std::logic_error once `Prepare` was called
  void AddDatabase(const ZelkDatabase& database, std::string_view name,
                   std::string_view channel = {});
  /// Ends the adding.
  void Prepare();

  /// @param channel  that the frame came from; empty for none
  /// @param id       bit 31: an extended identifier
  /// @throws std::logic_error before `Prepare`
  ZelkFoundMessage Find(std::string_view channel, std::uint32_t id) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
