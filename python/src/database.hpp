/// \file
/// What `zelk.load` returns.

#ifndef ZELK_PYTHON_DATABASE_HPP
#define ZELK_PYTHON_DATABASE_HPP

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.hpp"
#include "model.hpp"
#include "python.hpp"

namespace zelk::python {

/// The codec of a message, made anew within an edit. It and the message's records stay while this
/// lives.
struct CodecUse {
  Use use;
  std::shared_ptr<Codec> codec;

  Codec* operator->() const { return codec.get(); }
};

/// The databases of one or more files, in which lookups look in their order.
class Database {
 public:
  /// One of the files. Whoever holds `model` may read it at any time, whatever happens to the
  /// database.
  struct Member {
    std::string name;  ///< by its file, unique here
    std::shared_ptr<Model> model;
  };

  explicit Database(std::vector<std::shared_ptr<Model>> models);

  const std::vector<Member>& members() const { return members_; }
  /// Puts another model in the place of the only one.
  void replace(std::shared_ptr<Model> model);

  /// The first message with a name (`str`, also "database::message") or an identifier (`int`; that
  /// of an extended frame with or without bit 31).
  ///
  /// @throws Failure when there is none, with names that are like the wanted one
  Message message(nb::handle key);
  CodecUse codec(nb::handle key);
  /// All messages, or nodes, as a collection of Python.
  nb::object messages();
  nb::object nodes();
  /// The first message of a J1939 parameter group.
  Message message_of_group(std::uint32_t pgn) const;

 private:
  struct Found {
    Model* model;
    const msgblk* message;
  };
  /// An index over the members, made when it is first wanted.
  struct Index {
    std::unordered_map<std::uint32_t, Found, SeededHash> by_id;
    std::unordered_map<std::string, Found, SeededHash> by_name;
  };

  bool is_editable() const { return members_.front().model->is_editable(); }
  const Index& index();
  Found find(nb::handle key);
  Found find_id(nb::handle key);
  Found find_name(nb::handle key);

  std::vector<Member> members_;
  std::unique_ptr<Index> index_;
  nb::object messages_;  ///< made when it is first wanted
  nb::object nodes_;
};

/// The codec of a message, which its model keeps.
CodecUse codec_of(const std::shared_ptr<Model>& model, const msgblk& message);

/// "0x141", "0x18FEF1FE".
std::string shown_id(std::uint32_t id);

}  // namespace zelk::python

#endif
