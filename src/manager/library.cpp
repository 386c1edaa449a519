#include "zelk/library.h"

#include <cstdint>
#include <cstring>

#include "platform/platform.hpp"

const char ZelkDatabaseNameAttribute[] = "DBName";
const char ZelkNotificationMessageString[] = "ZelkMessageNotification";

namespace {

constexpr char kVersion[] = "Zelkms Version 3.2.8";
constexpr std::uint32_t kFirstUnknownInterface = 332;

}  // namespace

bool ZELKMSGetModuleParameters(char* file_name, int file_name_size, char* version, int version_size,
                               int interface_version) {
  if (file_name && file_name_size > 1) {
    zelk::platform::own_file_name(file_name, static_cast<std::uint32_t>(file_name_size - 1));
  }
  if (version && version_size > 1) {
    std::strncpy(version, kVersion, static_cast<std::size_t>(version_size - 1));
  }
  return static_cast<std::uint32_t>(interface_version) < kFirstUnknownInterface;
}
