#include "edit.hpp"

#include <utility>

#include "base/encoding.hpp"
#include "codec.hpp"
#include "opening.hpp"
#include "zelk/errors.h"
#include "zelk/exception.hpp"
#include "zelk/lock.hpp"

namespace zelk::python {
namespace {

[[noreturn]] void fail(FailureKind kind, const std::string& path, const std::string& message) {
  throw Failure(kind, message, path);
}

[[noreturn]] void fail(ZelkError error, const std::string& path) {
  const bool is_locked =
      error == ZelkErrorOpenForWrite || error == ZelkErrorLocked || error == ZelkErrorAlreadyOpen;
  if (is_locked) fail(FailureKind::kLocked, path, "another edit of the file is going on");
  std::string detail = zelk_get_thread_error_text();
  if (detail.ends_with('\n')) detail.pop_back();
  detail.erase(0, detail.rfind('\n') + 1);
  const std::string text = ZelkErrorText(error);
  fail(FailureKind::kWrite, path,
       detail.empty() ? text : text + ": " + to_utf8(detail, encoding_of(detail)));
}

}  // namespace

// --- The manager ---

EditManager::EditManager(std::shared_ptr<Model> model)
    : ZelkWriteManager(static_cast<void*>(nullptr)), model_(std::move(model)) {}

EditManager::~EditManager() {
  model_->editor = nullptr;
  // Here: the destructor of the base would release the model in the library's own way.
  if (db_) CloseDatabase(db_, false);
}

void EditManager::open(const std::string& path) {
  zelk_clear_error_text();
  const ZelkError error = OpenDatabase(path.c_str(), &db_, "edited", 0);
  if (error != ZelkErrorOk) fail(error, path);
  if (!LockDatabase(db_, "Python is editing.")) fail(ZelkErrorLocked, path);
  static_cast<void>(GetDatabase(db_));  // from now on its lookups walk the lists
  model_->editor = this;
}

void EditManager::write(const std::string& path) {
  zelk_clear_error_text();
  const ZelkError error = WriteDatabase(db_, path.c_str());
  if (error != ZelkErrorOk) fail(error, path);
}

ZelkDatabase& EditManager::AssignDatabase(const char* /*path*/) {
  model_->enter_list();
  return *model_;
}

void EditManager::ReleaseDatabase(ZelkDatabase& database, bool /*keep_in_cache*/) {
  ZelkLock::FreeLock(*this, database);
  model_->leave_list();
}

// --- The edit ---

Edit::Edit(nb::object database, std::string path)
    : database_(std::move(database)), path_(std::move(path)) {
  if (this->database().members().size() > 1) {
    throw Failure(FailureKind::kEdit,
                  "a database of several files is not edited: load the file that is to change");
  }
  const Model& model = *this->database().members().front().model;
  is_own_ = path_.empty() || path_ == model.file;
  if (is_own_) path_ = model.file;
  if (is_own_ && (!model.is_dbc || model.is_mended)) {
    fail(FailureKind::kEdit, path_,
         model.is_dbc ? "the file was mended on reading: edit(path=...) names a file for the result"
                      : "DBC files are written alone: edit(path=...) names a file for the result");
  }
}

void Edit::check_unchanged(const Model& model) const {
  if (!model.file_time_read || file_time_of(path_) == model.file_time_read) return;
  fail(FailureKind::kEdit, path_, "the file was changed since it was read: load it again");
}

nb::object Edit::enter() {
  if (manager_) throw Failure(FailureKind::kEdit, "the edit has begun already");
  const std::shared_ptr<Model> base = database().members().front().model;
  if (base->is_editable()) throw Failure(FailureKind::kLocked, "the database is being edited");
  try {
    model_ = is_own_ ? Model::make(path_.c_str()) : Model::make(*base);
  } catch (const ZelkException& error) {
    fail(FailureKind::kRead, path_, error.what());
  }
  if (is_own_) check_unchanged(*base);
  model_->file = path_;
  model_->encoding = base->encoding;
  manager_ = std::make_unique<EditManager>(model_);
  manager_->open(path_);
  return nb::cast(new Database({model_}), nb::rv_policy::take_ownership);
}

void Edit::exit(nb::handle error) {
  if (!manager_) throw Failure(FailureKind::kEdit, "the edit has not begun");
  model_->check_unused();
  error.is_none() ? commit() : discard();
}

void Edit::discard() {
  manager_.reset();
  model_.reset();
}

void Edit::commit() {
  // Nobody changes the records while they are written, although the interpreter is not locked.
  const std::shared_ptr<Model> model = std::move(model_);
  std::unique_ptr<EditManager> manager = std::move(manager_);
  model->editor = nullptr;
  model->codecs.clear();
  if (is_own_) check_unchanged(*database().members().front().model);
  {
    const nb::gil_scoped_release unlocked;
    manager->write(path_);
    model->file_time_read = file_time_of(path_);
    manager.reset();
  }
  database().replace(model);
}

}  // namespace zelk::python
