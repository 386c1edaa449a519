#include "writer/short_names.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

#include "base/list.hpp"

namespace zelk {
namespace {

constexpr std::size_t kNumberedMax = 27;  // characters in front of "_" and four digits
constexpr int kNumbers = 1000;
constexpr std::string_view kSubstitute = "invalidShortSymbolicName";

/// Whether a name is written as it is.
bool is_kept(std::string_view name) { return !name.empty() && fits_inline(name); }

/// Calls `visit(kind, name)` for every object that has a name of its own.
template <typename Visit>
void for_each_name(const ModelView& model, Visit visit) {
  for (const auto& variable : each(model.env_vars)) {
    visit(NamedKind::kVariable, view(variable.name));
  }
  for (const auto& node : each(model.nodes)) visit(NamedKind::kNode, view(node.name));
  for (const auto& message : each(model.messages)) {
    visit(NamedKind::kMessage, view(message.name));
    for (const auto& signal : each(message.signals)) {
      visit(NamedKind::kSignal, view(signal.name));
    }
  }
}

}  // namespace

std::string_view ShortNames::written_name(const void* record, const char* name) {
  const std::string_view full = view(name);
  if (is_kept(full)) return full;
  const auto [entry, is_new] = chosen_.try_emplace(record);
  if (!is_new) return entry->second;
  if (is_long_name(name)) has_long_names_ = true;
  entry->second = choose(full);
  used_.insert(entry->second);
  return entry->second;
}

std::string ShortNames::choose(std::string_view name) {
  std::string base(name.empty() ? kSubstitute : name.substr(0, ZELK_INLINE_NAME_MAX));
  if (!used_.contains(base)) return base;
  const std::string start = base.substr(0, kNumberedMax);
  // Names in use stay in use: every number below the next one has been found taken.
  for (int& number = next_numbers_[start]; number < kNumbers; ++number) {
    std::array<char, 8> digits{};
    static_cast<void>(std::snprintf(digits.data(), digits.size(), "_%04d", number));
    std::string candidate = start + digits.data();
    if (!used_.contains(candidate)) return candidate;
  }
  return std::string(kSubstitute);
}

ShortNameCache::ShortNameCache(const ModelView& model) {
  // Names in use matter only where another name has to be chosen.
  std::array<bool, kNamedKinds> needs_names{};
  for_each_name(model, [&needs_names](NamedKind kind, std::string_view name) {
    needs_names[static_cast<std::size_t>(kind)] |= !is_kept(name);
  });
  if (std::none_of(needs_names.begin(), needs_names.end(), std::identity())) return;
  for_each_name(model, [&](NamedKind kind, std::string_view name) {
    if (needs_names[static_cast<std::size_t>(kind)] && is_kept(name)) (*this)[kind].reserve(name);
  });
}

}  // namespace zelk
