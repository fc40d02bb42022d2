// The deck's file as opened for reading, for as long as its package lives: a later rename over the
// path does not change what is read here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarch::host {

class InputFile {
 public:
  InputFile() = default;
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  // Empty when opened, else one sentence. Only a regular file that is not empty is taken.
  std::string Open(const std::string& path);
  // As Open, for bytes in memory, which are copied: a package that lies inside another one.
  std::string OpenBytes(std::string_view bytes);

  std::uint64_t Size() const { return size_; }
  // Whether `path` leads to this very file now.
  bool IsFileAt(const std::string& path) const;
  // How many bytes came; fewer than `length` only at the file's end or on an error of the medium.
  std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t length) const;

 private:
  int handle_ = -1;
  std::uint64_t size_ = 0;
};

}  // namespace quillmarch::host
