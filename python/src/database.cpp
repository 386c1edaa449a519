#include "database.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "base/database_names.hpp"
#include "base/edit_distance.hpp"
#include "base/frame_id.hpp"
#include "base/j1939.hpp"
#include "base/list.hpp"
#include "check/objects/record_words.hpp"
#include "codec.hpp"
#include "collection.hpp"

namespace zelk::python {
namespace {

std::string unique_name(const std::string& wanted, std::set<std::string>& taken) {
  std::string name = wanted;
  for (unsigned number = 2; !taken.insert(name).second; ++number)
    name = numbered_name(wanted, number);
  return name;
}

std::string unknown_name(const std::string& wanted, const auto& names) {
  const std::size_t limit = suggestion_distance(wanted);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const auto& [name, found] : names) {
    const std::size_t distance = edit_distance(name, wanted, limit);
    if (distance <= limit) near.emplace_back(distance, name);
  }
  std::ranges::sort(near);
  std::string text = "no message is named " + shown(wanted);
  if (!near.empty()) text += "; did you mean " + shown(near.front().second) + "?";
  return text;
}

}  // namespace

CodecUse codec_of(const std::shared_ptr<Model>& model, const msgblk& message) {
  Use use(model);
  std::shared_ptr<Codec>& codec = model->codecs[&message];
  if (!codec || model->is_editable()) codec = std::make_shared<Codec>(message, model->encoding);
  return {std::move(use), codec};
}

std::string shown_id(std::uint32_t id) { return check::padded_id(id); }

Database::Database(std::vector<std::shared_ptr<Model>> models) {
  std::set<std::string> taken;
  for (std::shared_ptr<Model>& model : models)
    members_.push_back({unique_name(database_name(model->file), taken), std::move(model)});
}

void Database::replace(std::shared_ptr<Model> model) {
  members_.front().model = std::move(model);
  index_.reset();
  messages_ = nodes_ = {};
}

nb::object Database::messages() {
  if (messages_ && !is_editable()) return messages_;
  Collection<msgblk> all("message");
  for (const Member& member : members_) all.add_all(member.model, member.model->messages);
  messages_ = nb::cast(std::move(all));
  return messages_;
}

nb::object Database::nodes() {
  if (nodes_ && !is_editable()) return nodes_;
  Collection<symblk> all("node");
  for (const Member& member : members_) all.add_all(member.model, member.model->nodes);
  nodes_ = nb::cast(std::move(all));
  return nodes_;
}

const Database::Index& Database::index() {
  // Within an edit the records may change at any time.
  if (index_ && !is_editable()) return *index_;
  auto index = std::make_unique<Index>();
  for (const Member& member : members_) {
    for (const msgblk& message : each(member.model->messages)) {
      const Found found{member.model.get(), &message};
      const std::string name = to_utf8(view(message.name), member.model->encoding);
      index->by_id.try_emplace(message.id, found);
      index->by_name.try_emplace(name, found);
      if (members_.size() > 1) index->by_name.try_emplace(member.name + "::" + name, found);
    }
  }
  index_ = std::move(index);
  return *index_;
}

Database::Found Database::find_id(nb::handle key) {
  const unsigned long long id = PyLong_AsUnsignedLongLong(key.ptr());
  if (PyErr_Occurred() || id > UINT32_MAX) {
    PyErr_Clear();
    throw Failure(FailureKind::kUnknownName, "no message can have the identifier " + shown(key));
  }
  const auto& messages = index().by_id;
  auto found = messages.find(static_cast<std::uint32_t>(id));
  if (found == messages.end())
    found = messages.find(static_cast<std::uint32_t>(id) | ZELK_ID_EXTENDED);
  if (found != messages.end()) return found->second;
  throw Failure(
      FailureKind::kUnknownName,
      "no message has the identifier " + check::hex_text(id, 1) + " (" + std::to_string(id) + ")");
}

Database::Found Database::find_name(nb::handle key) {
  const std::string name(text_from_python(key));
  const auto found = index().by_name.find(name);
  if (found != index().by_name.end()) return found->second;
  throw Failure(FailureKind::kUnknownName, unknown_name(name, index().by_name));
}

Database::Found Database::find(nb::handle key) {
  if (PyLong_Check(key.ptr())) return find_id(key);
  if (PyUnicode_Check(key.ptr())) return find_name(key);
  if (nb::isinstance<Message>(key)) {
    const auto& message = nb::cast<const Message&>(key);
    return {message.model().get(), &message.get()};
  }
  if (PyIndex_Check(key.ptr())) return find_id(checked(PyNumber_Index(key.ptr())));
  throw Failure(FailureKind::kArgument,
                "a message is named by its name or identifier, not by " + shown(key));
}

Message Database::message(nb::handle key) {
  const Found found = find(key);
  return {found.model->shared_from_this(), *found.message};
}

CodecUse Database::codec(nb::handle key) {
  const Found found = find(key);
  return codec_of(found.model->shared_from_this(), *found.message);
}

Message Database::message_of_group(std::uint32_t pgn) const {
  const j1939::Group wanted = j1939::group_of_number(pgn);
  for (const Member& member : members_) {
    const bool has_groups = member.model->HasJ1939GroupNumbers();
    for (const msgblk& message : each(member.model->messages)) {
      if ((message.id & ZELK_ID_EXTENDED) == 0) continue;
      const j1939::Group group =
          has_groups ? j1939::group_of_number(message.id) : j1939::frame_of_id(message.id).group;
      if (group.key == wanted.key) return {member.model, message};
    }
  }
  throw Failure(FailureKind::kUnknownName, "no message has the parameter group " +
                                               check::hex_text(pgn, 1) + " (" +
                                               std::to_string(pgn) + ")");
}

}  // namespace zelk::python
