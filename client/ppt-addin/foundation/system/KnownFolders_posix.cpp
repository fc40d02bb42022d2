#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"

namespace quillmarch {

Wide LocalDataFolder() {
  // A relative XDG_DATA_HOME counts as unset, as the base directory rules demand.
  const char* dataHome = std::getenv("XDG_DATA_HOME");
  if (dataHome != nullptr && dataHome[0] == '/') {
    Wide folder = ToWide(dataHome);
    while (folder.size() > 1 && folder.back() == u'/') folder.pop_back();
    return folder;
  }
  const char* home = std::getenv("HOME");
  if (home == nullptr || home[0] != '/') return {};
  return ToWide(std::string(home) + "/.local/share");
}

Wide RoamingDataFolder() {
  return LocalDataFolder();
}

namespace {

Wide ReadModulePath() {
  std::string path(4096, '\0');
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  if (length <= 0 || static_cast<std::size_t>(length) == path.size()) return {};
  path.resize(static_cast<std::size_t>(length));
  return ToWide(path);
}

}  // namespace

Wide ModulePath() {
  // A process keeps its module; each request asks for it. Never destroyed, as a detached thread may
  // ask while the process ends.
  static const Wide& path = *std::make_unique<const Wide>(ReadModulePath()).release();
  return path;
}

const Wide& ProcessImageName() {
  static const Wide name = LastComponent(ModulePath());
  return name;
}

}  // namespace quillmarch
