/// \file
/// Walks over the objects of open databases.

#ifndef ZELK_ITERATOR_HPP
#define ZELK_ITERATOR_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "zelk/database.hpp"
#include "zelk/manager.hpp"

/// Chooses the objects that an iterator stops at.
template <typename T>
class ZelkPredicate {
 public:
  /// @param object   never null
  /// @param db_name  name of the database that holds it; null when the iterator does not know it
  virtual bool operator()(T* object, ZelkManager& manager, const char* db_name) = 0;

 protected:
  ZelkPredicate() = default;
  ZelkPredicate(const ZelkPredicate&) = default;
  ZelkPredicate& operator=(const ZelkPredicate&) = default;
  ~ZelkPredicate() = default;
};

/// The end of every iterator, for range-based `for`.
struct ZelkIteratorEnd {};

/// Walks over records of one type, given by their links `next`: those of one database, those of all
/// databases of a manager in list order, or those that one object owns. `T` is a record type, or it
/// with const, or `ZelkManager::DbListNode`.
///
///     for (auto it = manager.GetMessageIterator(nullptr); it; ++it) use(it.DatabaseName(), **it);
///     for (const msgblk* message : manager.GetMessageIterator(nullptr)) use(*message);
///
/// An iterator points into the databases: it is valid while they are neither closed nor changed.
/// The predicate must outlive it. Copies are independent of each other.
template <typename T>
class ZelkIterator {
  /// For records that may be changed: a predicate that takes const ones.
  struct NoPredicate {};
  using ConstPredicate =
      std::conditional_t<std::is_const_v<T>, NoPredicate, ZelkPredicate<const T>>;
  template <typename U>
  static constexpr bool kIsComparable =
      std::is_same_v<std::remove_const_t<T>, std::remove_const_t<U>>;

 public:
  /// Gives the first object of a kind for null, else the next; `&ZelkDatabase::Walk<T>`.
  using FirstFunction = T* (ZelkDatabase::*)(T*);

  using value_type = T*;
  using difference_type = std::ptrdiff_t;

  /// Over the objects of a kind.
  ///
  /// @param db  name of a database (the walk stays in it; an unknown name has no objects); null:
  /// all
  ZelkIterator(const ZelkManager& manager, FirstFunction first, const char* db)
      : manager_(&manager), name_(db), first_(first) {
    Begin(db);
  }
  /// Over the objects that the predicate accepts.
  ZelkIterator(const ZelkManager& manager, FirstFunction first, ZelkPredicate<T>& predicate,
               const char* db)
      : flags_(kHasPredicate),
        manager_(&manager),
        name_(db),
        first_(first),
        predicate_(&predicate) {
    Begin(db);
    ZelkIterator::SeekNextValid();
  }
  /// Over the list that begins with `start`, null for an empty one.
  ///
  /// @param db  what `DatabaseName` returns
  ZelkIterator(const ZelkManager& manager, T* start, const char* db)
      : manager_(&manager), current_(start), name_(db) {}
  ZelkIterator(const ZelkManager& manager, T* start, ZelkPredicate<T>& predicate, const char* db)
      : flags_(kHasPredicate),
        manager_(&manager),
        current_(start),
        name_(db),
        predicate_(&predicate) {
    ZelkIterator::SeekNextValid();
  }
  ZelkIterator(const ZelkManager& manager, T* start, ConstPredicate& predicate, const char* db)
      : flags_(kHasPredicate),
        manager_(&manager),
        current_(start),
        name_(db),
        const_predicate_(&predicate) {
    ZelkIterator::SeekNextValid();
  }
  ZelkIterator(const ZelkIterator&) = default;
  ZelkIterator& operator=(const ZelkIterator&) = default;
  virtual ~ZelkIterator() = default;

  ZelkIterator& operator++() {
    IncreasePosition();
    if ((flags_ & kHasPredicate) != 0) SeekNextValid();
    return *this;
  }
  ZelkIterator operator++(int) {
    ZelkIterator before(*this);
    ++*this;
    return before;
  }

  /// Whether it stands on an object.
  // NOLINTNEXTLINE(google-explicit-constructor): hosts assign it to a bool
  operator bool() const { return current_ != nullptr; }
  /// The object it stands on; null behind the last one.
  T* operator*() const { return current_; }
  /// Name of the database that holds the object. A walk that stays in one database returns the name
  /// that it was given.
  const char* DatabaseName() const { return name_; }

  /// For range-based `for`: a copy, which does not call a derived class's `SeekNextValid`.
  ZelkIterator begin() const { return *this; }
  static ZelkIteratorEnd end() { return {}; }
  bool operator==(ZelkIteratorEnd) const { return current_ == nullptr; }

  /// Whether both stand on the same object, or both behind the last one. Iterators over different
  /// kinds of objects cannot be compared, and iterators are not ordered.
  template <typename U>
  bool operator==(const ZelkIterator<U>& other) const requires kIsComparable<U> {
    return current_ == *other;
  }
  template <typename U>
  bool operator==(const ZelkIterator<U>&) const requires(!kIsComparable<U>) = delete;
  template <typename U>
  void operator<=>(const ZelkIterator<U>&) const = delete;

 protected:
  void IncreasePosition() {
    if (current_ != nullptr) current_ = current_->next;
    if (current_ == nullptr && (flags_ & kAllDatabases) != 0) EnterNextDatabase();
  }

  /// Moves on to the first object, beginning with this one, that the predicate accepts.
  virtual void SeekNextValid() {
    while (current_ != nullptr && !IsAccepted()) IncreasePosition();
  }

 private:
  static constexpr std::uint32_t kAllDatabases = 1;
  static constexpr std::uint32_t kHasPredicate = 2;

  bool IsAccepted() const {
    auto& manager = const_cast<ZelkManager&>(*manager_);
    if constexpr (!std::is_const_v<T>) {
      if (const_predicate_ != nullptr) return (*const_predicate_)(current_, manager, name_);
    }
    return (*predicate_)(current_, manager, name_);
  }

  T* FirstOf(const ZelkManager::DbListNode& node) const {
    return (const_cast<ZelkDatabase&>(node.database).*first_)(nullptr);
  }

  void Begin(const char* db) {
    if (db != nullptr) {
      const ZelkManager::DbListNode* const node = manager_->ListFindNode(db);
      if (node != nullptr) current_ = FirstOf(*node);
      return;
    }
    flags_ |= kAllDatabases;
    node_ = manager_->databases_;
    if (node_ == nullptr) return;
    EnterDatabase();
    if (current_ == nullptr) IncreasePosition();
  }

  void EnterDatabase() {
    current_ = FirstOf(*node_);
    if (current_ != nullptr) name_ = node_->name;
  }

  void EnterNextDatabase() {
    while (current_ == nullptr && node_ != nullptr) {
      node_ = node_->next;
      if (node_ != nullptr) EnterDatabase();
    }
  }

  std::uint32_t flags_ = 0;
  const ZelkManager* manager_;
  T* current_ = nullptr;
  const char* name_;
  FirstFunction first_ = nullptr;
  ZelkPredicate<T>* predicate_ = nullptr;
  ZelkManager::DbListNode* node_ = nullptr;
  ConstPredicate* const_predicate_ = nullptr;
};

/// Receivers, transmitters, access nodes: links to nodes.
class ZelkReceiverIterator : public ZelkIterator<rxblk> {
 public:
  ZelkReceiverIterator(const ZelkManager& manager, sigblk& signal)
      : ZelkIterator(manager, signal.receivers, nullptr) {}
};
class ZelkConstReceiverIterator : public ZelkIterator<const rxblk> {
 public:
  ZelkConstReceiverIterator(const ZelkManager& manager, const sigblk& signal)
      : ZelkIterator(manager, static_cast<const rxblk*>(signal.receivers), nullptr) {}
};

/// Members of a signal group.
class ZelkSubsignalIterator : public ZelkIterator<siglistblk> {
 public:
  ZelkSubsignalIterator(const ZelkManager& manager, siggroupblk& group)
      : ZelkIterator(manager, group.signals, nullptr) {}
};
class ZelkConstSubsignalIterator : public ZelkIterator<const siglistblk> {
 public:
  ZelkConstSubsignalIterator(const ZelkManager& manager, const siggroupblk& group)
      : ZelkIterator(manager, static_cast<const siglistblk*>(group.signals), nullptr) {}
};

/// Categories of the view filters of one database, or of all for null.
class ZelkFilterCategoryIterator : public ZelkIterator<catlink> {
 public:
  ZelkFilterCategoryIterator(const ZelkManager& manager, const char* db)
      : ZelkIterator(manager, &ZelkDatabase::Walk<catlink>, db) {}

  /// The category, or the placeholder for a null link. It must stand on a link.
  cat& Category() const {
    return (**this)->category ? *(**this)->category : ZelkNoneFilterCategory();
  }
};
class ZelkConstFilterCategoryIterator : public ZelkIterator<const catlink> {
 public:
  ZelkConstFilterCategoryIterator(const ZelkManager& manager, const char* db)
      : ZelkIterator(manager, &ZelkDatabase::Walk<const catlink>, db) {}

  /// The category, or the placeholder for a null link. It must stand on a link.
  const cat& Category() const {
    return (**this)->category ? *(**this)->category : ZelkNoneFilterCategory();
  }
};

/// Nodes of the view filters, likewise.
class ZelkConstFilterNodeIterator : public ZelkIterator<const rxblk> {
 public:
  ZelkConstFilterNodeIterator(const ZelkManager& manager, const char* db)
      : ZelkIterator(manager, &ZelkDatabase::Walk<const rxblk>, db) {}

  /// The node, or the placeholder for a null link. It must stand on a link.
  const symblk& Node() const { return (**this)->node ? *(**this)->node : ZelkNoneFilterNode(); }
};

/// Open databases of a manager; the handle of one is its `name`.
class ZelkDatabaseNameIterator : public ZelkIterator<const ZelkManager::DbListNode> {
 public:
  explicit ZelkDatabaseNameIterator(const ZelkManager& manager)
      : ZelkIterator(manager.GetDatabaseNameIterator()) {}

  const char* Name() const { return (**this)->name; }
};

#endif
