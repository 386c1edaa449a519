/// \file
/// Prepared decoding and encoding of whole frames, for streams.

#ifndef ZELK_FRAME_DECODER_HPP
#define ZELK_FRAME_DECODER_HPP

#include <cstddef>
#include <cstdint>
#include <memory>

#include "zelk/records.h"
#include "zelk/types.hpp"

namespace zelk {
struct FramePlan;
}

/// Decodes all signals of one message from frames of known length.
///
/// A decoder is built once. Decoding neither allocates nor raises, and reads neither the message
/// nor the database. After an edit of the message the decoder must be built again. Any number of
/// threads can use it at once.
///
/// Signals stand in the order of the message's list; bit i % 64 of word i / 64 of a presence mask
/// belongs to signal i. A signal is present when it has at most 64 bits and fits into the frame,
/// and its multiplexor, a signal of the same message, is present and selects it
/// (`ZelkManager::CheckSignalModeValue`). No byte beyond the frame's length is read.
///
/// Values are those of `ZelkManager::GetSignalPhysicalValue`, to the last bit, except for signals
/// of up to 64 bits that reach into a ninth byte: that function loses their upper bits, a decoder
/// does not.
class ZELK_API ZelkFrameDecoder {
 public:
  /// @throws std::bad_alloc
  explicit ZelkFrameDecoder(const msgblk& message);
  ZelkFrameDecoder(ZelkFrameDecoder&&) noexcept;
  ZelkFrameDecoder& operator=(ZelkFrameDecoder&&) noexcept;
  ~ZelkFrameDecoder();

  const msgblk& Message() const;
  std::size_t SignalCount() const;
  /// Words of a presence mask: a bit for each signal.
  std::size_t PresenceWords() const { return (SignalCount() + 63) / 64; }
  /// The signal at `index`; a record of the message.
  const sigblk& Signal(std::size_t index) const;

  /// Physical values.
  ///
  /// @param data     the frame's data; null when `length` is 0
  /// @param length   in bytes
  /// @param values   receives `SignalCount()` values; 0 for an absent signal
  /// @param present  receives `PresenceWords()` words
  void Decode(const unsigned char* data, std::size_t length, double* values,
              std::uint64_t* present) const;
  /// Raw values: sign-extended for signed signals, the bit pattern of IEEE ones.
  ///
  /// @param values  receives `SignalCount()` values; 0 for an absent signal. Convert those of
  /// unsigned signals to `std::uint64_t`
  void DecodeRaw(const unsigned char* data, std::size_t length, std::int64_t* values,
                 std::uint64_t* present) const;

 private:
  std::unique_ptr<const zelk::FramePlan> plan_;
};

/// Encodes signals of one message into frames: the reverse of `ZelkFrameDecoder`, with the same
/// order of signals and the same guarantees.
class ZELK_API ZelkFrameEncoder {
 public:
  /// @throws std::bad_alloc
  explicit ZelkFrameEncoder(const msgblk& message);
  ZelkFrameEncoder(ZelkFrameEncoder&&) noexcept;
  ZelkFrameEncoder& operator=(ZelkFrameEncoder&&) noexcept;
  ~ZelkFrameEncoder();

  std::size_t SignalCount() const;
  std::size_t PresenceWords() const { return (SignalCount() + 63) / 64; }

  /// Puts physical values into a frame; bits that belong to no selected signal stay. Values are
  /// rounded as by `ZelkManager::PhysicalToRawValueInt64`. A value that the signal's bits cannot
  /// hold becomes the nearest one that they can, so neighbours are never changed. The caller sees
  /// to multiplexing when it selects the signals; where selected signals overlap, one of them wins.
  ///
  /// @param values   one for each signal; those of signals that are not selected are not read
  /// @param present  presence mask: the signals to write; null for all
  /// @param data     the frame's data
  /// @param length   in bytes
  /// @return whether every selected signal was written and held its value; one that does not fit
  /// into the frame, or has more than 64 bits, is left out
  bool Encode(const double* values, const std::uint64_t* present, unsigned char* data,
              std::size_t length) const;

 private:
  std::unique_ptr<const zelk::FramePlan> plan_;
};

/// Decoders for all messages of a database, found by the identifiers of frames.
class ZELK_API ZelkFrameDecoderTable {
 public:
  /// @param messages  head of a list; of messages with one identifier the first counts
  /// @throws std::bad_alloc
  explicit ZelkFrameDecoderTable(const msgblk* messages);
  ZelkFrameDecoderTable(ZelkFrameDecoderTable&&) noexcept;
  ZelkFrameDecoderTable& operator=(ZelkFrameDecoderTable&&) noexcept;
  ~ZelkFrameDecoderTable();

  /// @param id  all 32 bits count; bit 31: an extended identifier
  /// @return null when there is no such message; valid as long as the table
  const ZelkFrameDecoder* Find(std::uint32_t id) const;
  /// The decoder of one of the messages; null for a foreign one.
  const ZelkFrameDecoder* Find(const msgblk& message) const;

 private:
  struct Entries;
  std::unique_ptr<const Entries> entries_;
};

#endif
