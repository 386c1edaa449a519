#include "log/frame_catalog.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "base/j1939.hpp"
#include "input/lookup.hpp"
#include "term/output.hpp"
#include "term/system.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

struct Binding {
  std::string interface_name;
  std::string path;
};

Binding parse_binding(const std::string& argument) {
  const std::size_t mark = argument.find('=');
  if (mark == std::string::npos || mark == 0 || exists(argument)) return {"", argument};
  return {argument.substr(0, mark), argument.substr(mark + 1)};
}

/// Prints an error for a pattern that matches none of `names`.
bool check_pattern(std::string_view kind, const std::string& pattern,
                   const std::vector<std::string>& names) {
  NameSuggestion others(pattern);
  for (const std::string& name : names) {
    if (matches_wildcards(pattern, name)) return true;
    others.add(name);
  }
  print_error(fmt::format("zelk: no {} is named {}{}", kind, in_quotes(pattern), others.text()));
  return false;
}

}  // namespace

CatalogDatabase::CatalogDatabase(std::string interface_name, std::unique_ptr<DatabaseFile> file,
                                 const FrameOptions& options)
    : interface_name_(std::move(interface_name)),
      file_(std::move(file)),
      database_(file_->encoded().records),
      decoders_(database_.messages),
      has_group_numbers_(database_.HasJ1939GroupNumbers()),
      has_groups_(has_group_numbers_ || database_.GetAttrDef(j1939::kFrameFormatAttribute)) {
  for (const msgblk& message : each(messages())) {
    if (const ZelkFrameDecoder* const decoder = decoders_.Find(message))
      prepared_.try_emplace(decoder, *decoder, options, file_->encoded().encoding);
  }
  if (options.match_groups && !has_group_numbers_) groups_.emplace(messages());
}

const PreparedMessage* CatalogDatabase::prepared(const ZelkFrameDecoder* decoder) const {
  const auto found = prepared_.find(decoder);
  return found == prepared_.end() ? nullptr : &found->second;
}

const PreparedMessage* CatalogDatabase::find(std::uint32_t id) const {
  // A group number is no identifier, even where they are equal.
  if (has_group_numbers_ && (id & ZELK_ID_EXTENDED)) return nullptr;
  return prepared(decoders_.Find(id));
}

const PreparedMessage* CatalogDatabase::find_group(std::uint32_t id) const {
  if (!(id & ZELK_ID_EXTENDED)) return nullptr;
  const msgblk* message = has_groups_ ? database_.GetJ1939Message(id, 0) : nullptr;
  if (!message && groups_) message = groups_->find(id);
  return message ? prepared(decoders_.Find(*message)) : nullptr;
}

bool FrameCatalog::open(const std::string& argument) {
  const Binding binding = parse_binding(argument);
  auto file = std::make_unique<DatabaseFile>(mending_);
  const ZelkDatabase* const database = file->open_and_report(binding.path);
  if (!database) return false;
  for (const msgblk& message : each(database->messages))
    most_signals_ = std::max(most_signals_, each(message.signals).size());
  databases_.push_back(
      std::make_unique<CatalogDatabase>(binding.interface_name, std::move(file), options_));
  return true;
}

const PreparedMessage* FrameCatalog::find(std::string_view interface_name, std::uint32_t id) const {
  for (const auto search : {&CatalogDatabase::find, &CatalogDatabase::find_group}) {
    for (const auto& database : databases_) {
      if (!database->counts_for(interface_name)) continue;
      if (const PreparedMessage* const message = ((*database).*search)(id)) return message;
    }
  }
  return nullptr;
}

bool FrameCatalog::check_filter() const {
  const NameFilter& filter = options_.filter;
  if (filter.messages.empty() && filter.signals.empty()) return true;
  std::vector<std::string> messages;
  std::vector<std::string> signals;
  for (const auto& database : databases_) {
    for (const msgblk& message : each(database->messages())) {
      messages.emplace_back(view(message.name));
      for (const sigblk& signal : each(message.signals)) {
        signals.emplace_back(view(signal.name));
        signals.push_back(fmt::format("{}.{}", view(message.name), view(signal.name)));
      }
    }
  }
  bool all = true;
  for (const std::string& pattern : filter.messages)
    all &= check_pattern("message", pattern, messages);
  for (const std::string& pattern : filter.signals)
    all &= check_pattern("signal", pattern, signals);
  return all;
}

}  // namespace zelk::tool
