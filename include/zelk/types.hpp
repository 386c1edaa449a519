/// \file
/// Types that several headers of the class interface share.

#ifndef ZELK_TYPES_HPP
#define ZELK_TYPES_HPP

#include <cstddef>
#include <cstdint>

#include "zelk/export.h"
#include "zelk/platform.h"
#include "zelk/records.h"

/// Results of the class interface.
enum ZelkError : int {
  ZelkErrorOk = 0,
  ZelkErrorNoDatabase = 1,    ///< no database of that name, or it could not be read or imported
  ZelkErrorFileNotFound = 2,  ///< the file does not exist, or no file is named
  ZelkErrorNameUsed = 3,      ///< the manager has a database of that name
  ZelkErrorAlreadyOpen = 4,   ///< the manager has the file open
  ZelkErrorOpenForWrite = 5,  ///< a write manager has the file open
  ZelkErrorInvalidName = 7,   ///< no database can have the name
  ZelkErrorReadOnly = 8,      ///< the file is read-only
  ZelkErrorNotWritten = 9,    ///< not written, and the file as it was; also for no such database
  ZelkErrorFileBelongs = 10,  ///< another database has the file, or one that was to be new exists
  ZelkErrorLocked = 11        ///< another manager holds a lock
};

/// The result in words for people, such as "the file is read-only"; the reason in detail is in the
/// error text (errors.h).
///
/// @return a constant of the library; never null, also for a number that is none of the results
ZELK_API const char* ZelkErrorText(ZelkError error);

/// Results of queries: the values of a manager's status word (`ZelkManager::Status`).
enum ZelkStatus : int {
  ZelkStatusOk = 0,
  ZelkStatusNotFound = 2,       ///< no such database or object
  ZelkStatusNoNumber = 3,       ///< no value description with that text
  ZelkStatusNoDescription = 4,  ///< no value description with that number
  ZelkStatusNotDefined = 5      ///< no such attribute for this kind of object
};

/// Results of the operations on signal values.
enum ZelkSigvalueResult : int {
  ZelkSigvalueOk = 0,
  ZelkSigvalueError = 1,           ///< no bits (90 or more), unknown format, no value description
  ZelkSigvalueWrongType = 2,       ///< an IEEE operation on an integer signal
  ZelkSigvalueTooLong = 3,         ///< the signal is longer than the operation can hold
  ZelkSigvalueOutOfRange = 4,      ///< the physical value is outside [minimum, maximum]
  ZelkSigvalueNotPresent = 5,      ///< the frame's multiplexor does not select the signal
  ZelkSigvalueBufferTooSmall = 6,  ///< the text does not fit
};

/// The result in words, as `ZelkErrorText`.
ZELK_API const char* ZelkSigvalueResultText(ZelkSigvalueResult result);

/// Forms of a signal's value as a text.
enum ZelkSigvalueFormat : int {
  ZelkFormatDecimal = 0,
  ZelkFormatHex = 1,
  ZelkFormatDecimalBytes = 2,  ///< most significant first, "  1 255"
  ZelkFormatHexBytes = 3,      ///< most significant first, "01 FF"
  ZelkFormatPhysical = 4,
  ZelkFormatPhysicalUnit = 5,
  ZelkFormatValueDescription = 6,
  ZelkFormatNone = 7,    ///< no text, only the test whether the signal is present
  ZelkFormatBinary = 8,  ///< most significant bit first
};

/// Where a signal's bits lie, computed once for many frames (`ZelkManager::GetSignalAccessMask`).
/// Valid while the signal's start bit, length and byte order stay as they are.
struct zelk_sig_mask_t {
  std::uint32_t mask;        ///< of the valid bits in the topmost 32-bit word of the value; for 90
                             ///< bits and more left as it was
  std::uint32_t bit_offset;  ///< of the least significant bit in its byte, 0 to 7
  std::uint32_t motorola;    ///< 1 for Motorola byte order, 0 for Intel
  std::uint32_t length;      ///< in bits
  std::uint32_t byte_count;  ///< bytes of the frame that the signal touches
  std::uint32_t lsb_byte;    ///< index of the byte with the least significant bit
  std::uint32_t bit_span;    ///< `length` + `bit_offset`
  std::uint32_t min_data_length;  ///< bytes that a frame needs to hold the signal
};

/// Selects which of several databases answers a lookup.
struct ZelkSelection {
  std::uint32_t key = 0;      ///< primary selector; its meaning is the caller's
  std::uint16_t sub_key = 0;  ///< secondary selector
};

/// The selections that an open database answers to. A new database answers to every one.
struct ZelkSelectionPattern {
  static constexpr std::uint32_t kAnyKey = 0xFFFFFFFF;
  static constexpr std::uint16_t kAnySubKey = 0xFFFF;

  std::uint32_t key = kAnyKey;
  std::uint16_t sub_key = kAnySubKey;

  /// Whether both members equal those of the selection.
  bool IsExact(const ZelkSelection& selection) const {
    return key == selection.key && sub_key == selection.sub_key;
  }
  /// Whether the key equals that of the selection, and the sub key too or is any.
  bool IsPartial(const ZelkSelection& selection) const {
    return key == selection.key && (sub_key == selection.sub_key || sub_key == kAnySubKey);
  }
  /// Whether it answers to every selection.
  bool IsCatchAll() const { return key == kAnyKey && sub_key == kAnySubKey; }
};

#endif
