/// \file
/// Edits of a database: all that was changed is written at once, or nothing.

#ifndef ZELK_PYTHON_EDIT_HPP
#define ZELK_PYTHON_EDIT_HPP

#include <memory>
#include <string>

#include "database.hpp"
#include "model.hpp"
#include "zelk/write_manager.hpp"

namespace zelk::python {

/// The manager of one edit. It lends the library a model, which others own.
class EditManager : public ZelkWriteManager {
 public:
  explicit EditManager(std::shared_ptr<Model> model);
  ~EditManager() override;

  /// Takes the file for writing, and locks it: no other edit of this process gets it.
  /// @throws Failure
  void open(const std::string& path);
  /// Writes the model to `path`.
  /// @throws Failure; the file is as it was
  void write(const std::string& path);
  /// The handle of the database.
  const char* db() const { return db_; }

  ZelkError GetDatabaseFileInfo(const char* /*path*/) const override { return ZelkErrorOk; }

 protected:
  ZelkDatabase& AssignDatabase(const char* path) override;
  void ReleaseDatabase(ZelkDatabase& database, bool keep_in_cache) override;

 private:
  std::shared_ptr<Model> model_;
  const char* db_ = nullptr;
};

/// The context manager that `Database.edit` returns.
class Edit {
 public:
  /// @param database  of Python; kept alive
  /// @param path      empty for the database's own file
  /// @throws Failure for a database without an own file that can be written
  Edit(nb::object database, std::string path);
  Edit(Edit&&) = default;
  ~Edit() { discard(); }

  /// @return the database in which objects can be changed
  nb::object enter();
  /// @param error  the exception that ends the edit; None: it is to be written
  void exit(nb::handle error);

 private:
  Database& database() const { return nb::cast<Database&>(database_); }
  void check_unchanged(const Model& model) const;
  void discard();
  void commit();

  nb::object database_;
  std::string path_;
  bool is_own_ = false;  ///< the file is the one that was read
  std::shared_ptr<Model> model_;
  std::unique_ptr<EditManager> manager_;
};

/// What changes the records of a model that is edited.
///
/// @throws Failure when the edit has ended
inline EditManager& editor_of(const Model& model) {
  if (!model.editor) throw Failure(FailureKind::kReadOnly, "the edit has ended");
  return *model.editor;
}

}  // namespace zelk::python

#endif
