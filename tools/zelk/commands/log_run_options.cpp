#include "commands/log_run_options.hpp"

namespace zelk::tool {

void add_match_pgn_option(CLI::App& command, bool& match_groups) {
  command.add_flag("--match-pgn", match_groups,
                   "Match extended identifiers by their J1939 parameter group also where the\n"
                   "databases do not say that their messages have any");
}

void add_j1939_options(CLI::App& command, LogRunOptions& options, bool& match_groups) {
  command.add_flag("--j1939-tp", options.transport,
                   "Put messages of the J1939 transport protocol together (BAM, RTS/CTS)");
  add_match_pgn_option(command, match_groups);
}

void add_log_run_options(CLI::App& command, LogRunOptions& options, const std::string& threads) {
  add_time_options(command, options.times);
  command.add_flag("--strict", options.strict, "Lines that are not frames are an error");
  command.add_flag("--stats", options.stats, "Tell at the end, on standard error, what was met");
  command.add_option("--threads", options.threads, "Threads to work with; else " + threads)
      ->type_name("N")
      ->check(CLI::Range(1u, ZelkPipelineOptions::kMostThreads).description(""));
}

ZelkPipelineOptions pipeline_options(const LogRunOptions& options) {
  ZelkPipelineOptions pipeline;
  pipeline.threads = options.threads;
  pipeline.times = options.times.window;
  pipeline.transport = options.transport;
  return pipeline;
}

}  // namespace zelk::tool
