// The user's folders and the add-in's own place, without a separator at the end. Empty when the
// system names none. Nothing is created. Any thread.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch {

// Windows: the local application data folder. Elsewhere: $XDG_DATA_HOME or ~/.local/share.
Wide LocalDataFolder();
// Windows: the roaming application data folder. Elsewhere the same as LocalDataFolder().
Wide RoamingDataFolder();

// The per-user data folder, not created here; empty when the system names none. Windows: the local
// (else roaming) application data folder and "\Quillmarch". Elsewhere: $XDG_DATA_HOME/Quillmarch
// or ~/.local/share/Quillmarch.
Wide GetUserDataDir();

// The full path of the add-in's own module (elsewhere: of the program that it is linked into).
Wide ModulePath();

// The last component of the path of this process's image, found once.
const Wide& ProcessImageName();

}  // namespace quillmarch
