/// The files that managers open and that others change behind their back.
#ifndef ZELK_FUZZ_CALLS_FILES_HPP
#define ZELK_FUZZ_CALLS_FILES_HPP

#include <dirent.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/// A folder with a few files, in memory where the system has a place for that; removed at the end.
class Files {
 public:
  /// Two of them differ in case alone. The folder of the last one does not exist. An import makes
  /// `kImported` of `json()`.
  static constexpr unsigned kCount = 5;
  static constexpr unsigned kImported = 3;

  /// Content and time; equal for a file that nobody has written.
  struct Stamp {
    bool exists = false;
    std::int64_t time = 0;
    std::uint64_t size = 0;
    bool operator==(const Stamp& other) const {
      return exists == other.exists && time == other.time && size == other.size;
    }
  };
  using Stamps = std::array<Stamp, kCount>;

  Files();
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files();

  const std::string& path(unsigned index) const { return paths_[index]; }
  const std::string& json() const { return json_; }
  /// The index of one of the paths; `kCount` for none.
  unsigned index_of(const char* path) const;
  bool exists(unsigned index) const { return stamp(index).exists; }
  Stamp stamp(unsigned index) const;
  /// Of all files, and nothing but these is there. One look at the folder is cheaper than one at
  /// each file that does not exist.
  Stamps stamps() const;

  /// Nothing happens where the folder does not exist.
  void put(unsigned index, std::string_view content) const;
  void remove(unsigned index) const;
  void set_read_only(unsigned index, bool on) const;
  /// Removes all files but the one for conversions.
  void clear() const;

 private:
  std::filesystem::path folder_;
  std::string json_;
  DIR* names_ = nullptr;
  std::array<std::string, kCount> paths_;
};

#endif
