#include "foundation/system/KnownFolders.h"

#include "foundation/system/Files.h"

namespace quillmarch {

Wide GetUserDataDir() {
  Wide home = LocalDataFolder();
  if (home.empty()) home = RoamingDataFolder();
  return home.empty() ? Wide() : JoinPath(home, u"Quillmarch");
}

}  // namespace quillmarch
