// The user's configuration file for one test: absent at its start and put away at its end.
#pragma once

#include <string>

#include "foundation/log/Log.h"
#include "foundation/settings/UserConfig.h"
#include "foundation/system/FileBytes.h"
#include "foundation/system/KnownFolders.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

class UserConfigFile {
 public:
  UserConfigFile() {
    CreateFolder(GetUserDataDir());
    Remove();
  }
  ~UserConfigFile() { Remove(); }
  UserConfigFile(const UserConfigFile&) = delete;
  UserConfigFile& operator=(const UserConfigFile&) = delete;

  void Write(std::string_view bytes) { WriteBytes(ConfigPath(), bytes); }
  std::string Read() const { return ReadBytes(ConfigPath()); }
  void Remove() {
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(ConfigPath()), ignored);
  }
};

}  // namespace quillmarch::addin
