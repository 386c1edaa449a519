/// \file
/// The objects of a database as a sequence of Python, in which names work too.

#ifndef ZELK_PYTHON_COLLECTION_HPP
#define ZELK_PYTHON_COLLECTION_HPP

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/list.hpp"
#include "base/seeded_hash.hpp"
#include "model.hpp"
#include "python.hpp"

namespace zelk::python {

/// References to records of one kind, in their order.
template <typename Record>
class Collection {
 public:
  /// @param what  a word for the kind: "message"
  explicit Collection(const char* what) : what_(what) {}

  void add(const std::shared_ptr<Model>& model, const Record& record) {
    items_.emplace_back(model, record);
  }
  void add_all(const std::shared_ptr<Model>& model, const Record* head) {
    for (const Record& record : each(head)) add(model, record);
  }

  std::size_t size() const { return items_.size(); }
  const std::vector<Ref<Record>>& items() const { return items_; }

  /// @param key  a name or a position
  nb::object at(nb::handle key) const;
  nb::object slice(nb::handle key) const;
  bool contains(nb::handle key) const;
  std::string text() const;

 private:
  std::string name_of(const Ref<Record>& item) const {
    return to_utf8(view(item.get().name), item.model()->encoding);
  }
  const Ref<Record>* find(std::string_view name) const;
  nb::object at_position(nb::handle key) const;

  const char* what_;
  std::vector<Ref<Record>> items_;
  /// Positions by name, made for a long collection of records that do not change.
  mutable std::unordered_map<std::string, std::size_t, SeededHash> positions_;
};

/// @param name  of the type in Python
/// @param item  of the type of its items
template <typename Record>
void bind_collection(nb::module_& module, const char* name, const char* item, const char* doc);

// --- Implementation ---

template <typename Record>
const Ref<Record>* Collection<Record>::find(std::string_view name) const {
  constexpr std::size_t kLong = 16;
  if (items_.size() < kLong || items_.front().model()->is_editable()) {
    const auto has_name = [&](const Ref<Record>& item) { return name_of(item) == name; };
    const auto found = std::ranges::find_if(items_, has_name);
    return found == items_.end() ? nullptr : &*found;
  }
  const bool is_new = positions_.empty();
  for (std::size_t i = 0; is_new && i < items_.size(); ++i)
    positions_.try_emplace(name_of(items_[i]), i);
  const auto found = positions_.find(std::string(name));
  return found == positions_.end() ? nullptr : &items_[found->second];
}

template <typename Record>
nb::object Collection<Record>::at_position(nb::handle key) const {
  const Py_ssize_t given = PyNumber_AsSsize_t(key.ptr(), PyExc_IndexError);
  if (given == -1 && PyErr_Occurred()) nb::raise_python_error();
  const auto size = static_cast<Py_ssize_t>(items_.size());
  const Py_ssize_t position = given < 0 ? given + size : given;
  if (position < 0 || position >= size) {
    throw nb::index_error(
        (std::string(what_) + " " + std::to_string(given) + " of " + std::to_string(size)).c_str());
  }
  return nb::cast(items_[static_cast<std::size_t>(position)]);
}

template <typename Record>
nb::object Collection<Record>::slice(nb::handle key) const {
  Py_ssize_t start = 0;
  Py_ssize_t stop = 0;
  Py_ssize_t step = 0;
  if (PySlice_Unpack(key.ptr(), &start, &stop, &step) != 0) nb::raise_python_error();
  const Py_ssize_t count =
      PySlice_AdjustIndices(static_cast<Py_ssize_t>(items_.size()), &start, &stop, step);
  Collection part(what_);
  for (Py_ssize_t i = 0; i < count; ++i)
    part.items_.push_back(items_[static_cast<std::size_t>(start + i * step)]);
  return nb::cast(std::move(part));
}

template <typename Record>
nb::object Collection<Record>::at(nb::handle key) const {
  if (PyIndex_Check(key.ptr())) return at_position(key);
  if (!PyUnicode_Check(key.ptr())) {
    throw Failure(
        FailureKind::kArgument,
        std::string("a ") + what_ + " is chosen by its name or position, not by " + shown(key));
  }
  if (const Ref<Record>* const found = find(text_from_python(key))) return nb::cast(*found);
  throw Failure(FailureKind::kUnknownName, std::string("no ") + what_ + " is named " + shown(key));
}

template <typename Record>
bool Collection<Record>::contains(nb::handle key) const {
  if (PyUnicode_Check(key.ptr())) return find(text_from_python(key)) != nullptr;
  if (!nb::isinstance<Ref<Record>>(key)) return false;
  const auto& wanted = nb::cast<const Ref<Record>&>(key);
  return std::find(items_.begin(), items_.end(), wanted) != items_.end();
}

template <typename Record>
std::string Collection<Record>::text() const {
  constexpr std::size_t kMostNames = 20;
  std::string names;
  for (std::size_t i = 0; i < items_.size() && i < kMostNames; ++i)
    names += (i == 0 ? "" : ", ") + name_of(items_[i]);
  if (items_.size() > kMostNames) names += ", ... (" + std::to_string(items_.size()) + " in all)";
  return "[" + names + "]";
}

template <typename Record>
void bind_collection(nb::module_& module, const char* name, const char* item, const char* doc) {
  using Items = Collection<Record>;
  static const std::string kGetter =
      std::string("def __getitem__(self, key: str | int) -> ") + item;
  static const std::string kSlicer = std::string("def __getitem__(self, key: slice) -> ") + name;
  static const std::string kWalker =
      std::string("def __iter__(self) -> collections.abc.Iterator[") + item + "]";
  nb::class_<Items>(module, name, doc)
      .def("__len__", &Items::size)
      .def(
          "__getitem__", [](const Items& items, const nb::slice& key) { return items.slice(key); },
          nb::sig(kSlicer.c_str()))
      .def("__getitem__", &Items::at, nb::arg("key").none(), nb::sig(kGetter.c_str()))
      .def("__contains__", &Items::contains, nb::arg("key").none())
      .def("__repr__", [](const Items& items) { return text_to_python(items.text()); })
      .def(
          "__iter__",
          [](const Items& items) {
            nb::list list;
            for (const Ref<Record>& one : items.items()) list.append(nb::cast(one));
            return checked(PyObject_GetIter(list.ptr()));
          },
          nb::sig(kWalker.c_str()));
}

}  // namespace zelk::python

#endif
