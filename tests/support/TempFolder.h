// A folder of its own for one test, removed with everything in it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace quillmarch {

class TempFolder {
 public:
  TempFolder() {
    // Several processes of one test run do this at once.
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("quillmarch-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::u16string wide() const { return path_.u16string(); }
  std::u16string operator/(std::u16string_view name) const {
    return (path_ / std::filesystem::path(name)).u16string();
  }
  std::string Path(const std::string& name) const { return (path_ / name).string(); }
  // Writes a file and gives its path.
  std::string Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return Path(name);
  }
  // Files and folders directly in it.
  std::size_t Files() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }
  static std::string Bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
};

}  // namespace quillmarch
