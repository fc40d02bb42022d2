// A folder of its own for one test, gone with it.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "foundation/Clock.h"
#include "foundation/Files.h"
#include "foundation/Wide.h"

class TempFolder {
 public:
  TempFolder() {
    static int number = 0;
    const std::string name = "quillmarch-" + std::to_string(SystemTickCount()) + "-" +
                             std::to_string(CurrentThreadNumber()) + "-" + std::to_string(number++);
    path_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(path_);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  Wide wide() const { return path_.u16string(); }
  Wide operator/(WideView name) const { return (path_ / std::filesystem::path(name)).u16string(); }

 private:
  std::filesystem::path path_;
};

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
