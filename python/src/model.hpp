/// \file
/// The records behind the objects of Python, and how these refer to them.

#ifndef ZELK_PYTHON_MODEL_HPP
#define ZELK_PYTHON_MODEL_HPP

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/encoding.hpp"
#include "failure.hpp"
#include "zelk/database.hpp"

namespace zelk::python {

class Codec;
class EditManager;

/// The records of one file. All objects of Python that show one of them share the model, which
/// lives as long as one of these objects.
///
/// A model that was read never changes again: threads may read it at any time. An edit works on a
/// model of its own, which replaces the other in its database when all is written; until then only
/// who holds the lock of the interpreter reads or changes it.
class Model : public ZelkDatabase, public std::enable_shared_from_this<Model> {
 public:
  /// Without records.
  Model();
  /// Reads a file, which becomes the model's own.
  ///
  /// @throws ZelkException
  explicit Model(const char* file_name);
  /// A copy of the records, for no file.
  Model(const Model& other);
  ~Model() override;

  /// Makes a model that the last owner releases with the lock of the interpreter held: a model
  /// keeps texts of Python.
  template <typename... Arguments>
  static std::shared_ptr<Model> make(const Arguments&... arguments) {
    return {new Model(arguments...), release};
  }

  /// While a model is edited, the library finds it by its file, and refuses other edits of that.
  void enter_list() { ListInsertDb(*this); }
  void leave_list() { ListRemoveDb(*this); }

  /// The number of the record that has this address now; `kNobody` for one that was deleted.
  std::uint64_t number_of(const void* record) const {
    const auto found = numbers_.find(record);
    return found == numbers_.end() ? 0 : found->second;
  }
  /// A record was created: its address may have been that of a deleted one.
  void enter(const void* record) { numbers_[record] = ++last_number_; }
  /// A record is about to be deleted.
  void forget(const void* record) { numbers_[record] = kNobody; }

  std::string file{};  ///< as it was given
  std::optional<std::filesystem::file_time_type>
      file_time_read{};  ///< the file's before it was read
  Encoding encoding = Encoding::kUtf8;
  bool is_mended = false;
  bool is_dbc = true;                  ///< read from a file of the library's own format
  EditManager* editor = nullptr;       ///< that changes the records; null outside an edit
  std::vector<PlacedFinding> mends{};  ///< of a file that was mended
  std::unordered_map<const msgblk*, std::shared_ptr<Codec>> codecs;  ///< made when first wanted

  unsigned uses = 0;  ///< by calls that run code of Python (`Use`)

  /// @throws Failure while a call uses the records
  void check_unused() const {
    if (uses > 0)
      throw Failure(FailureKind::kEdit, "the records are in use by a call that is going on");
  }
  bool is_editable() const { return editor != nullptr; }

 private:
  static constexpr std::uint64_t kNobody = ~std::uint64_t{0};

  static void release(Model* model);

  std::unordered_map<const void*, std::uint64_t> numbers_;  ///< of records that an edit touched
  std::uint64_t last_number_ = 0;
};

/// Keeps a model, and its records where they are, while code of Python may run that could delete
/// them: until then an edit of the model deletes nothing, and does not end.
class Use {
 public:
  explicit Use(std::shared_ptr<Model> model) : model_(std::move(model)) { ++model_->uses; }
  Use(Use&& other) noexcept : model_(std::move(other.model_)) {}
  Use& operator=(Use&&) = delete;
  ~Use() {
    if (model_) --model_->uses;
  }

 private:
  std::shared_ptr<Model> model_;
};

/// A record that is being changed.
template <typename Record>
struct Changing {
  Use use;
  Record& record;
};

/// How an object of Python refers to its record.
template <typename Record>
class Ref {
 public:
  Ref(std::shared_ptr<Model> model, const Record& record)
      : model_(std::move(model)),
        record_(const_cast<Record*>(&record)),
        number_(model_->number_of(&record)) {}

  /// @throws Failure when the record was deleted
  const Record& get() const { return checked_record(); }
  /// The record, to be changed.
  /// @throws Failure when the record was deleted, or no edit is going on
  Changing<Record> change() const;

  const std::shared_ptr<Model>& model() const { return model_; }
  /// A reference to another record of the model.
  template <typename Other>
  Ref<Other> to(const Other& record) const {
    return {model_, record};
  }

  bool operator==(const Ref& other) const {
    return record_ == other.record_ && number_ == other.number_ && model_ == other.model_;
  }
  std::size_t hash() const { return std::hash<const void*>()(record_); }

 private:
  Record& checked_record() const;

  std::shared_ptr<Model> model_;
  Record* record_;
  std::uint64_t number_;
};

using Message = Ref<msgblk>;
using Signal = Ref<sigblk>;
using Node = Ref<symblk>;
using Variable = Ref<env_var_blk>;

// --- Implementation ---

template <typename Record>
Record& Ref<Record>::checked_record() const {
  if (model_->number_of(record_) != number_)
    throw Failure(FailureKind::kDeleted, "the object was deleted from its database");
  return *record_;
}

template <typename Record>
Changing<Record> Ref<Record>::change() const {
  if (!model_->is_editable()) {
    throw Failure(FailureKind::kReadOnly,
                  "objects are changed within an edit alone: with db.edit() as edit: "
                  "edit.messages[...].name = ...");
  }
  return {Use(model_), checked_record()};
}

}  // namespace zelk::python

#endif
