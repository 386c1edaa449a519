/// \file
/// The databases that frames of logs are looked up in.

#ifndef ZELK_TOOL_LOG_LOG_DATABASES_HPP
#define ZELK_TOOL_LOG_LOG_DATABASES_HPP

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/name_filter.hpp"
#include "input/opening.hpp"

namespace zelk::tool {

/// Databases in the order of the command line, each for the frames of all interfaces or of one.
class LogDatabases {
 public:
  explicit LogDatabases(Mending mending) : mending_(std::move(mending)) {}

  /// Reads a database: "PATH", or "INTERFACE=PATH" unless a file has that whole name. Faults are
  /// printed on standard error.
  ///
  /// @return false when it cannot be read
  bool open(const std::string& argument);

  /// `open`, unless the file is a log: one that begins like a log and cannot be read as a database.
  /// A file that is neither is reported with both reasons.
  ///
  /// @return false when it is no database; `log` then has the path of a log
  bool open_unless_log(const std::string& argument, std::optional<std::string>& log);

  /// The paths of all of them.
  const std::vector<std::string>& paths() const { return paths_; }

  /// Prints an error for each pattern of the filter that no message or signal matches.
  ///
  /// @param more  what to add to it
  /// @return whether all match
  bool check_filter(const NameFilter& filter, std::string_view more = {}) const;

  bool empty() const { return databases_.empty(); }

  /// Adds all of them to a decoder or finder of the library.
  ///
  /// @param decoder  must not outlive the object
  template <typename Decoder>
  void add_to(Decoder& decoder) const {
    for (const OpenDatabase& database : databases_) {
      decoder.AddDatabase(database.file->encoded().records, label_of(database),
                          database.interface_name);
    }
  }

  /// `add_to`, and selects what the filter has.
  template <typename Decoder>
  void choose(Decoder& decoder, const NameFilter& filter) const {
    add_to(decoder);
    for (const std::string& pattern : filter.messages) decoder.SelectMessages(pattern);
    for (const std::string& pattern : filter.signals) decoder.SelectSignals(pattern);
  }

  struct Entry {
    EncodedDatabase content;
    const std::string& interface_name;  ///< empty for all
  };
  /// In the order in which they were opened; valid as long as the object.
  std::vector<Entry> entries() const;

 private:
  struct OpenDatabase {
    std::string interface_name;  ///< empty for all
    std::unique_ptr<DatabaseFile> file;
  };

  std::string label_of(const OpenDatabase& database) const;

  Mending mending_;
  std::vector<OpenDatabase> databases_;
  std::vector<std::string> paths_;
};

}  // namespace zelk::tool

#endif
