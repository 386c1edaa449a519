/// \file
/// The databases that frames are looked up in.

#ifndef ZELK_TOOL_LOG_FRAME_CATALOG_HPP
#define ZELK_TOOL_LOG_FRAME_CATALOG_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/j1939_groups.hpp"
#include "input/opening.hpp"
#include "log/prepared_message.hpp"

namespace zelk::tool {

/// A database of the command line, for the frames of all interfaces or of one.
class CatalogDatabase {
 public:
  /// @param interface_name  empty for all
  /// @param file            has opened a database
  CatalogDatabase(std::string interface_name, std::unique_ptr<DatabaseFile> file,
                  const FrameOptions& options);

  bool counts_for(std::string_view interface_name) const {
    return interface_name_.empty() || interface_name_ == interface_name;
  }

  /// The message with the identifier of a frame; null when there is none.
  const PreparedMessage* find(std::uint32_t id) const;
  /// The parameter group of a frame with an extended identifier: among the messages that the
  /// database says to be of J1939, else among all, where that is wanted.
  const PreparedMessage* find_group(std::uint32_t id) const;

  const msgblk* messages() const { return database_.messages; }

 private:
  const PreparedMessage* prepared(const ZelkFrameDecoder* decoder) const;

  std::string interface_name_;
  std::unique_ptr<DatabaseFile> file_;
  const ZelkDatabase& database_;
  ZelkFrameDecoderTable decoders_;
  bool has_group_numbers_;  // in place of identifiers
  bool has_groups_;
  std::optional<const J1939Groups> groups_;  ///< of messages that it does not say to have any
  std::unordered_map<const ZelkFrameDecoder*, PreparedMessage> prepared_;
};

/// Databases in the order of the command line, each for all interfaces or for one.
///
/// It does not change once all databases are in, and can then be asked by many threads at once.
class FrameCatalog {
 public:
  explicit FrameCatalog(FrameOptions options, Mending mending = {})
      : options_(std::move(options)), mending_(std::move(mending)) {}

  /// Reads a database: "PATH", or "INTERFACE=PATH" unless a file has that whole name. Faults are
  /// printed on standard error.
  ///
  /// @return false when it cannot be read
  bool open(const std::string& argument);

  /// Prints an error for each pattern of the filter that no message or signal matches.
  ///
  /// @return whether all match
  bool check_filter() const;

  /// A frame's message: in the first database with the identifier, or else in the
  /// first with the parameter group; null when there is none.
  const PreparedMessage* find(std::string_view interface_name, std::uint32_t id) const;

  const FrameOptions& options() const { return options_; }
  bool empty() const { return databases_.empty(); }
  /// The most signals that a message has.
  std::size_t most_signals() const { return most_signals_; }

 private:
  FrameOptions options_;
  Mending mending_;
  std::vector<std::unique_ptr<CatalogDatabase>> databases_;
  std::size_t most_signals_ = 0;
};

}  // namespace zelk::tool

#endif
