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
  ZelkErrorNoDatabase = 1,    ///< no database of that name, or the file could not be read
  ZelkErrorFileNotFound = 2,  ///< the file does not exist, or no file is named
  ZelkErrorNameUsed = 3,      ///< the manager has a database of that name
  ZelkErrorAlreadyOpen = 4,   ///< the manager has the file open
  ZelkErrorOpenForWrite = 5,  ///< a write manager has the file open
  ZelkErrorInvalidName = 7,   ///< not a name for a database
  ZelkErrorReadOnly = 8,      ///< the file is read-only
  ZelkErrorNotWritten = 9,    ///< the file could not be written; it is as it was
  ZelkErrorFileBelongs = 10,  ///< the file belongs to another open database
  ZelkErrorLocked = 11        ///< another manager holds a lock
};

/// What a caller asks for: which of several databases shall answer.
struct ZelkSelection {
  std::uint32_t key = 0;      ///< primary selector; its meaning is the caller's
  std::uint16_t sub_key = 0;  ///< secondary selector
};

/// What an open database answers to. A new database has the catch-all pattern.
struct ZelkSelectionPattern {
  static constexpr std::uint32_t kAnyKey = 0xFFFFFFFF;
  static constexpr std::uint16_t kAnySubKey = 0xFFFF;

  std::uint32_t key = kAnyKey;
  std::uint16_t sub_key = kAnySubKey;

  /// Both members are those of the selection.
  bool IsExact(const ZelkSelection& selection) const {
    return key == selection.key && sub_key == selection.sub_key;
  }
  /// The key is the selection's, the sub key too or any.
  bool IsPartial(const ZelkSelection& selection) const {
    return key == selection.key && (sub_key == selection.sub_key || sub_key == kAnySubKey);
  }
  /// Answers to every selection.
  bool IsCatchAll() const { return key == kAnyKey && sub_key == kAnySubKey; }
};

#endif
