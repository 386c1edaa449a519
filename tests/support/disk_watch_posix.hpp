/// The calls by which files and folders change: the test program's fsync, rename, link, unlink,
/// ftruncate and pwrite pass through here.
#ifndef ZELK_TESTS_SUPPORT_DISK_WATCH_POSIX_HPP
#define ZELK_TESTS_SUPPORT_DISK_WATCH_POSIX_HPP

/// Sees these calls while it lives. One object at a time.
class DiskWatch {
 public:
  DiskWatch();
  DiskWatch(const DiskWatch&) = delete;
  DiskWatch& operator=(const DiskWatch&) = delete;
  virtual ~DiskWatch();

  virtual void before_change() = 0;
  virtual void after_sync(int file) = 0;  ///< which has succeeded

  static DiskWatch* now();  ///< null when there is none
};

#endif
