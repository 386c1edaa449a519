#include "files/attributes_posix.hpp"

#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace zelk::files {
namespace {

using Bytes = std::vector<char>;

constexpr const char* kAccessList = "system.posix_acl_access";

/// Whether the system derives the attribute from the content, or drops it when that changes.
bool belongs_to_content(std::string_view name) {
  constexpr std::array<std::string_view, 3> kNames = {"security.capability", "security.evm",
                                                      "security.ima"};
  return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

bool is_label(std::string_view name) { return name.starts_with("security."); }

/// The names of the extended attributes, each ended by a zero byte.
Bytes attribute_names(const Descriptor& file) {
  const ssize_t wanted = flistxattr(file.get(), nullptr, 0);
  if (wanted < 0 && errno == ENOTSUP) return {};
  Bytes names(wanted < 0 ? 0 : static_cast<std::size_t>(wanted));
  const ssize_t size = wanted < 0 ? wanted : flistxattr(file.get(), names.data(), names.size());
  if (size < 0) fail_save("its extended attributes cannot be read");
  names.resize(static_cast<std::size_t>(size));
  return names;
}

/// None when there is no such attribute, or it cannot be read (`errno` says).
std::optional<Bytes> attribute(const Descriptor& file, const char* name) {
  const ssize_t wanted = fgetxattr(file.get(), name, nullptr, 0);
  if (wanted < 0) return std::nullopt;
  Bytes value(static_cast<std::size_t>(wanted));
  const ssize_t size = fgetxattr(file.get(), name, value.data(), value.size());
  if (size < 0) return std::nullopt;
  value.resize(static_cast<std::size_t>(size));
  return value;
}

void keep_attribute(const Descriptor& old, const Descriptor& fresh, const char* name) {
  if (belongs_to_content(name)) return;
  const std::optional<Bytes> value = attribute(old, name);
  if (!value && errno == ENODATA) return;  // taken away in this moment
  if (value && attribute(fresh, name) == value) return;
  if (value && fsetxattr(fresh.get(), name, value->data(), value->size(), 0) == 0) return;
  if (!is_label(name)) fail_save("its attribute " + std::string(name) + " cannot be kept");
}

void keep_attributes(const Descriptor& old, const Descriptor& fresh) {
  const Bytes names = attribute_names(old);
  bool has_access_list = false;
  for (std::size_t at = 0; at < names.size();) {
    const std::string_view name = names.data() + at;
    keep_attribute(old, fresh, name.data());
    has_access_list |= name == kAccessList;
    at += name.size() + 1;
  }
  // The folder may have given one to the new file.
  if (has_access_list || fremovexattr(fresh.get(), kAccessList) == 0) return;
  if (errno != ENODATA && errno != ENOTSUP) fail_save("its access list cannot be kept");
}

/// A group that the process is not in cannot be handed on; that matters when the group has other
/// rights than everybody.
void keep_owner(const struct stat& old, const Descriptor& fresh) {
  constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
  if (fchown(fresh.get(), old.st_uid, old.st_gid) == 0) return;
  if (fchown(fresh.get(), kSameOwner, old.st_gid) == 0) return;
  const bool is_like_everybody = ((old.st_mode >> 3) & 07) == (old.st_mode & 07);
  if (!is_like_everybody && status_of(fresh).st_gid != old.st_gid) {
    fail_save("its group cannot be kept");
  }
}

/// Behind all others, which take away or change some permissions.
void keep_permissions(const struct stat& old, const Descriptor& fresh) {
  const struct stat now = status_of(fresh);
  mode_t mode = old.st_mode & 07777;
  if (now.st_uid != old.st_uid) mode &= ~static_cast<mode_t>(S_ISUID);
  if (now.st_gid != old.st_gid) mode &= ~static_cast<mode_t>(S_ISGID);
  if ((now.st_mode & 07777) == mode || fchmod(fresh.get(), mode) == 0) return;
  fail_save("its permissions cannot be kept");
}

}  // namespace

void copy_attributes(const Descriptor& old, const Descriptor& fresh) {
  const struct stat status = status_of(old);
  keep_owner(status, fresh);
  keep_attributes(old, fresh);
  keep_permissions(status, fresh);
}

}  // namespace zelk::files
