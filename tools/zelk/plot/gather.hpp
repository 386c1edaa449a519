/// \file
/// Gathers from logs what a plot shows.

#ifndef ZELK_TOOL_PLOT_GATHER_HPP
#define ZELK_TOOL_PLOT_GATHER_HPP

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "log/log_databases.hpp"
#include "plot/figure.hpp"
#include "zelk/logs/columns.hpp"

namespace zelk::tool {

struct PlotChoice {
  std::vector<std::string> signals{};  ///< patterns of names, "S" or "M.S"
  std::vector<std::string> jitter{};   ///< patterns of messages: the times between their frames
  std::string cycle_attribute = "GenMsgCycleTime";  ///< of messages: their cycle time in ms
  bool match_groups = false;                        ///< as `ZelkColumnOptions::match_groups`
  bool relative = false;                            ///< each log counts from its own first frame
};

/// What the frames of a block are decoded into.
struct PlotRows {
  ZelkColumnRows signals;
  ZelkColumnRows messages;
  bool has_signals = false;

  const ZelkFrameCounts& Counts() const;
};

/// Takes the rows of logs, one log after the other, and makes a figure of them.
///
/// All logs share the axis of time. What several interfaces have of a signal are curves of their
/// own, and what several logs have when their times overlap or count from their own first frames.
class PlotGatherer {
 public:
  /// Curves and lanes that can be told from each other.
  static constexpr std::size_t kMostSeries = 64;
  /// Points that are kept of a curve, or runs of a lane; of all together a few times as many.
  static constexpr std::size_t kMostPoints = 2'000'000;

  /// @param databases  must outlive the object
  PlotGatherer(const LogDatabases& databases, const PlotChoice& choice, std::size_t log_count);
  PlotGatherer(const PlotGatherer&) = delete;
  PlotGatherer& operator=(const PlotGatherer&) = delete;
  ~PlotGatherer();

  /// Decodes a block, in any thread.
  void Decode(const ZelkFrameBlock& frames, PlotRows& rows) const;

  /// @param name  what to call the log
  void begin_log(const std::string& name);
  /// Takes decoded rows of the log, in their order.
  ///
  /// @throws RequestError when they are of too many signals, or have no times
  void put(PlotRows& rows);
  void end_log();

  /// What was gathered; nothing can be put any more.
  Figure figure();

  /// Whether no frame had anything.
  bool is_empty() const;
  /// The patterns of signals that no frame had; all this before `figure`.
  std::vector<std::string> missing() const;
  /// The patterns of messages whose jitter is wanted, and of which there were no two frames.
  std::vector<std::string> missing_messages() const;
  /// Whether the times of any signal ran backwards.
  bool ran_backwards() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zelk::tool

#endif
