/// \file
/// Frames decoded into lines of text.

#ifndef ZELK_LOGS_TEXTS_HPP
#define ZELK_LOGS_TEXTS_HPP

#include <cstdint>
#include <memory>
#include <string_view>

#include "zelk/database.hpp"
#include "zelk/export.h"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/frame.hpp"

/// The formats of decoded frames. All are in UTF-8; control characters of names and texts are
/// escaped.
enum class ZelkTextFormat : std::uint8_t {
  kText,  ///< a line for each frame: (TIME) INTERFACE MESSAGE SIGNAL=VALUE UNIT "DESCRIPTION" ...
  kJson,  ///< an object in a line for each frame: {"time":...,"interface":...,"id":...,
          ///< "extended":...,"message":...,"signals":{...},"texts":{...}}
  kCsv,   ///< a line for each signal, below a heading: time,interface,id,message,signal,raw,value,
          ///< unit,text (RFC 4180)
};

struct ZelkTextOptions {
  ZelkTextFormat format = ZelkTextFormat::kText;
  bool raw = false;           ///< raw values instead of physical ones
  bool numbers = false;       ///< no value descriptions
  bool match_groups = false;  ///< as in `ZelkColumnOptions`
};

/// The lines of one block of frames: what passes from the threads that decode to the one that
/// writes. It keeps its memory for the next block.
class ZELK_LOGS_API ZelkTextLines {
 public:
  ZelkTextLines();
  ZelkTextLines(ZelkTextLines&&) noexcept;
  ZelkTextLines& operator=(ZelkTextLines&&) noexcept;
  ~ZelkTextLines();

  /// Whole lines; valid until the next `Decode`.
  std::string_view Text() const;
  /// What became of the frames of the block.
  const ZelkFrameCounts& Counts() const;

 private:
  friend class ZelkTextDecoder;
  struct Content;
  std::unique_ptr<Content> content_;
};

/// Decodes frames into lines of text.
///
/// Physical values are computed in decimal where factor and offset are short: 3 * 0.1 is "0.3".
/// Signals that `ZelkFrameDecoder` finds absent are left out.
///
/// First databases are added and messages selected, by one thread. Then any number of threads may
/// `Decode`, each into lines of its own.
class ZELK_LOGS_API ZelkTextDecoder {
 public:
  explicit ZelkTextDecoder(ZelkTextOptions options = {});
  ZelkTextDecoder(const ZelkTextDecoder&) = delete;
  ZelkTextDecoder& operator=(const ZelkTextDecoder&) = delete;
  ~ZelkTextDecoder();

  // --- Choosing what is decoded; std::logic_error once `Prepare` was called ---

  /// See `ZelkColumnDecoder::AddDatabase`.
  void AddDatabase(const ZelkDatabase& database, std::string_view name,
                   std::string_view channel = {});
  /// See `ZelkColumnDecoder::SelectMessages`.
  bool SelectMessages(std::string_view pattern);
  /// See `ZelkColumnDecoder::SelectSignals`. A frame without a selected signal makes no line.
  bool SelectSignals(std::string_view pattern);

  /// Ends the choosing.
  void Prepare();

  // --- Decoding; std::logic_error before `Prepare` ---

  /// The line in front of all frames, with its end; empty for formats without one.
  std::string_view Heading() const;
  /// Decodes a block into lines, in place of what they held.
  void Decode(const ZelkFrameBlock& frames, ZelkTextLines& lines) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
