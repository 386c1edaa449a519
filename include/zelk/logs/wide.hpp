/// \file
/// Frames decoded into wide tables of text: a column for each signal (CSV, RFC 4180).

#ifndef ZELK_LOGS_WIDE_HPP
#define ZELK_LOGS_WIDE_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zelk/database.hpp"
#include "zelk/export.h"
#include "zelk/logs/counts.hpp"
#include "zelk/logs/frame.hpp"

struct ZelkWideOptions {
  bool raw = false;           ///< raw values instead of physical ones
  bool numbers = false;       ///< no columns of value descriptions
  bool units = false;         ///< units in the headings: "SIGNAL [unit]"
  bool match_groups = false;  ///< as in `ZelkColumnOptions`
};

/// What is decoded into wide tables. A signal has a column of its values, spelled as in
/// `ZelkTextFormat::kCsv` and empty where it is absent, and behind it, named "SIGNAL.text", one of
/// its value descriptions, where it has any. Lines end in CR and LF.
///
/// First databases are added and messages selected, by one thread; then one of the two decoders
/// below is made of it.
class ZELK_LOGS_API ZelkWideChoice {
 public:
  ZelkWideChoice();
  ZelkWideChoice(const ZelkWideChoice&) = delete;
  ZelkWideChoice& operator=(const ZelkWideChoice&) = delete;
  ~ZelkWideChoice();

  /// See `ZelkColumnDecoder::AddDatabase`.
  void AddDatabase(const ZelkDatabase& database, std::string_view name,
                   std::string_view channel = {});
  /// See `ZelkColumnDecoder::SelectMessages`.
  bool SelectMessages(std::string_view pattern);
  /// See `ZelkColumnDecoder::SelectSignals`.
  bool SelectSignals(std::string_view pattern);

 private:
  friend class ZelkWideDecoder;
  friend class ZelkTimeline;
  struct State;
  std::unique_ptr<State> state_;
};

/// The table of one message.
struct ZelkWideTable {
  std::string name;     ///< of the message, in UTF-8; "DATABASE.MESSAGE" where several databases
                        ///< have a message of that name; equal ones are told apart by numbers
  std::string heading;  ///< the first line: time,interface,SIGNAL,...
};

/// The rows of one block, in the order of its frames.
class ZELK_LOGS_API ZelkWideRows {
 public:
  ZelkWideRows();
  ZelkWideRows(const ZelkWideRows&) = delete;
  ZelkWideRows& operator=(const ZelkWideRows&) = delete;
  ~ZelkWideRows();

  std::size_t Size() const;
  /// The table of a row, as index.
  ///
  /// @pre `row` < `Size()`
  std::uint32_t Table(std::size_t row) const;
  /// The line of a row, likewise; valid until the next `Decode`.
  std::string_view Line(std::size_t row) const;
  const ZelkFrameCounts& Counts() const;

 private:
  friend class ZelkWideDecoder;
  struct Content;
  std::unique_ptr<Content> content_;
};

/// Decodes frames into a table for each message, a row for each frame. Any number of threads may
/// decode, each into rows of its own.
class ZELK_LOGS_API ZelkWideDecoder {
 public:
  explicit ZelkWideDecoder(const ZelkWideChoice& choice, const ZelkWideOptions& options = {});
  ZelkWideDecoder(const ZelkWideDecoder&) = delete;
  ZelkWideDecoder& operator=(const ZelkWideDecoder&) = delete;
  ~ZelkWideDecoder();

  const std::vector<ZelkWideTable>& Tables() const;
  /// Decodes a block into rows, in place of what they held.
  ///
  /// @param rows  of this decoder alone
  void Decode(const ZelkFrameBlock& frames, ZelkWideRows& rows) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Values of one block on their way into a timeline.
class ZELK_LOGS_API ZelkTimelineValues {
 public:
  ZelkTimelineValues();
  ZelkTimelineValues(const ZelkTimelineValues&) = delete;
  ZelkTimelineValues& operator=(const ZelkTimelineValues&) = delete;
  ~ZelkTimelineValues();

  const ZelkFrameCounts& Counts() const;

 private:
  friend class ZelkTimeline;
  struct Content;
  std::unique_ptr<Content> content_;
};

/// One table of signals of several messages, in which the last value of each is kept: a row for
/// each frame that has one of them, or on an even grid of times. Columns are named by their
/// signals, "MESSAGE.SIGNAL" where two have the same name.
///
/// The grid has the multiples of a step: from the time of the first frame, rounded down, to the
/// latest time of all frames. A row has the last value at or before its time. Frames whose times
/// run backwards count as if they came at the latest time so far.
///
/// Any number of threads may `Decode`, each into values of its own, while one `Put`s them, in the
/// order of their blocks.
class ZELK_LOGS_API ZelkTimeline {
 public:
  /// Most rows of the grid between two frames: a log that leaps by years does not fill the disk.
  static constexpr std::int64_t kMostRowsOfGap = 10'000'000;

  /// @param step   of the grid, in nanoseconds; 0: a row for each frame
  /// @param write  takes whole lines, in `Put` and `End`
  ZelkTimeline(const ZelkWideChoice& choice, const ZelkWideOptions& options, std::int64_t step,
               std::function<void(std::string_view)> write);
  ZelkTimeline(const ZelkTimeline&) = delete;
  ZelkTimeline& operator=(const ZelkTimeline&) = delete;
  ~ZelkTimeline();

  /// The first line: time,SIGNAL,...
  const std::string& Heading() const;
  /// Decodes a block into values, in place of what they held.
  ///
  /// @throws ZelkLogError when a frame has no time and the grid needs it
  void Decode(const ZelkFrameBlock& frames, ZelkTimelineValues& values) const;
  /// @throws ZelkLogError when more than `kMostRowsOfGap` rows have no frame
  void Put(const ZelkTimelineValues& values);
  /// Writes the rows that are left.
  void End();

  /// The messages, by their names, of which frames came from several channels: their values are
  /// mixed in one column.
  std::vector<std::string> MixedMessages() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
