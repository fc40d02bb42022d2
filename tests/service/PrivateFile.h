// Files with secrets, as the service wants them.
#pragma once

#include <sys/stat.h>

#include <string>

#include "support/TempFolder.h"

namespace quillmarch::service {

// Readable by its owner only.
inline std::string PutPrivate(const TempFolder& folder, const std::string& name,
                              const std::string& bytes) {
  const std::string path = folder.Put(name, bytes);
  chmod(path.c_str(), S_IRUSR | S_IWUSR);
  return path;
}

}  // namespace quillmarch::service
