// The deck's file as opened for reading, for as long as its package lives: a later rename over the
// path does not change what is read here.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmarch::host {

// Which file it is and which state it is in: equal as long as nobody has written to it.
struct FileState {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t seconds = 0;  // of the last modification
  std::int64_t nanoseconds = 0;
  friend bool operator==(const FileState&, const FileState&) = default;
};

// Of the file that the path leads to; nothing when there is none.
std::optional<FileState> FileStateAt(const std::string& path);

class InputFile {
 public:
  InputFile() = default;
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  // Empty when opened, else one sentence. Takes only a regular file that is not empty.
  std::string Open(const std::string& path);
  // As Open, for bytes in memory, which are copied: a package that lies inside another one.
  std::string OpenBytes(std::string_view bytes);

  std::uint64_t Size() const { return opened_.size; }
  // As it was when it was opened.
  const FileState& Opened() const { return opened_; }
  mode_t Permissions() const { return permissions_; }
  // Whether somebody has written to this very file since it was opened.
  bool WasChanged() const;
  // Whether `path` leads to this very file now.
  bool IsFileAt(const std::string& path) const;
  // How many bytes came; fewer than `length` only at the file's end or on an error of the medium.
  std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t length) const;

 private:
  int handle_ = -1;
  FileState opened_;
  mode_t permissions_ = 0;
};

}  // namespace quillmarch::host
