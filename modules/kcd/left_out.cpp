#include "kcd/left_out.hpp"

#include "zelk/module.h"

namespace zelk::modules::kcd {
namespace {

/// Further kinds are counted together: a file may have as many kinds as elements.
constexpr std::size_t kMaxKinds = 100;

}  // namespace

void LeftOut::add(const std::string& kind, const std::string& where, std::uint64_t count) {
  if (count == 0) return;
  std::pair<std::string, std::string> key(where, kind);
  if (counts_.size() >= kMaxKinds && !counts_.contains(key)) key = {" besides", "thing"};
  counts_[key] += count;
}

void LeftOut::note() const {
  for (const auto& [key, count] : counts_) {
    const auto& [where, kind] = key;
    std::string text = "left out: " + std::to_string(count) + " " + kind;
    if (count != 1) text += 's';
    text += where;
    zelk_note(ZELK_ERR_FORMAT, 0, text.c_str());
  }
}

}  // namespace zelk::modules::kcd
