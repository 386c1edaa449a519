/// \file
/// The databases that frames of logs are looked up in.

#ifndef ZELK_TOOL_LOG_LOG_DATABASES_HPP
#define ZELK_TOOL_LOG_LOG_DATABASES_HPP

#include <memory>
#include <string>
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

  /// Prints an error for each pattern of the filter that no message or signal matches.
  ///
  /// @return whether all match
  bool check_filter(const NameFilter& filter) const;

  bool empty() const { return databases_.empty(); }

  /// Adds all of them to a decoder of the library, and selects what the filter has.
  ///
  /// @param decoder  must not outlive the object
  template <typename Decoder>
  void choose(Decoder& decoder, const NameFilter& filter) const {
    for (const OpenDatabase& database : databases_) {
      decoder.AddDatabase(database.file->encoded().records, label_of(database),
                          database.interface_name);
    }
    for (const std::string& pattern : filter.messages) decoder.SelectMessages(pattern);
    for (const std::string& pattern : filter.signals) decoder.SelectSignals(pattern);
  }

 private:
  struct OpenDatabase {
    std::string interface_name;  ///< empty for all
    std::unique_ptr<DatabaseFile> file;
  };

  std::string label_of(const OpenDatabase& database) const;

  Mending mending_;
  std::vector<OpenDatabase> databases_;
};

}  // namespace zelk::tool

#endif
