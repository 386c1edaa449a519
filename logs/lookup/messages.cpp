#include "zelk/logs/messages.hpp"

#include <optional>
#include <stdexcept>
#include <vector>

#include "base/list.hpp"
#include "logs/lookup/choosing.hpp"
#include "logs/lookup/message_finder.hpp"

struct ZelkMessageFinder::State {
  bool match_groups = false;
  zelk::logs::Choosing chosen{};
  std::optional<const zelk::logs::MessageFinder> finder{};  ///< none while databases are added
  std::vector<ZelkFoundMessage> messages{};                 ///< by the numbers of the finder
};

ZelkMessageFinder::ZelkMessageFinder(bool match_groups) : state_(std::make_unique<State>()) {
  state_->match_groups = match_groups;
}
ZelkMessageFinder::~ZelkMessageFinder() = default;

void ZelkMessageFinder::AddDatabase(const ZelkDatabase& database, std::string_view name,
                                    std::string_view channel) {
  if (state_->finder) throw std::logic_error("a message finder is changed after it was prepared");
  state_->chosen.add_database(database, name, channel);
}

void ZelkMessageFinder::Prepare() {
  const auto& databases = state_->chosen.databases;
  state_->messages.clear();
  for (std::size_t i = 0; i < databases.size(); ++i) {
    for (const msgblk& message : zelk::each<const msgblk>(databases[i].content.records.messages))
      state_->messages.push_back({&message, i});
  }
  state_->finder.emplace(databases, state_->match_groups);
}

ZelkFoundMessage ZelkMessageFinder::Find(std::string_view channel, std::uint32_t id) const {
  if (!state_->finder) throw std::logic_error("a message finder is used before it is prepared");
  const std::uint32_t number = state_->finder->search(state_->finder->route_of(channel), id);
  return number == zelk::logs::kNoMessage ? ZelkFoundMessage{} : state_->messages[number];
}
