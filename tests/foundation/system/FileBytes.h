// Files of tests, named as the add-in names them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "foundation/system/Files.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

inline void WriteBytes(const Wide& path, std::string_view bytes) {
  std::ofstream file(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
  file << bytes;
}

inline std::string ReadBytes(const Wide& path) {
  std::string bytes;
  ReadWholeFile(path, bytes);
  return bytes;
}

// A file of that size that takes next to no room on the disk.
inline void WriteSized(const Wide& path, std::uintmax_t size) {
  WriteBytes(path, "");
  std::filesystem::resize_file(std::filesystem::path(path), size);
}

inline bool Exists(const Wide& path) {
  return std::filesystem::exists(std::filesystem::path(path));
}

}  // namespace quillmarch::addin
