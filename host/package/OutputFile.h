// A file that appears whole or not at all: bytes go to a temporary file in the target's folder,
// which takes the target's place at the end.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "host/package/InputFile.h"

namespace quillmarch::host {

class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Removes the temporary file unless Commit has succeeded.
  ~OutputFile();

  // Makes the temporary file, and removes those that killed runs left in its folder. A symbolic
  // link is followed, so that the link stays. A new target gets the bits of `permissions` that the
  // user's mask allows, and the owner may always write to it; the temporary file is never more open
  // than the target will be. Empty when done, else one sentence: the target is read-only, it is not
  // a regular file, its folder is missing or refuses.
  std::string Open(const std::string& target, mode_t permissions = 0666);
  // Instead of Open: what is written stays in memory, to be taken by ReadAt; there is no Commit.
  std::string OpenInMemory();
  // Whether the target as it is now is the very file that `input` reads.
  bool Replaces(const InputFile& input) const;
  // Whether somebody has written to the target, made or removed it since Open.
  bool TargetChanged() const { return FileStateAt(target_) != found_; }

  bool Write(std::uint64_t offset, const void* from, std::size_t length);
  // What was written so far, in bytes; and `length` of them, false when there are not as many.
  std::uint64_t Size() const;
  bool ReadAt(std::uint64_t offset, void* to, std::size_t length) const;
  // Copies `length` bytes of `input` from `from` to `to` here.
  bool CopyFrom(const InputFile& input, std::uint64_t from, std::uint64_t length, std::uint64_t to);

  // Flushes to the medium and renames over the target, whose mode bits and owner stay. Empty when
  // done, else one sentence; also when a Write before has failed.
  std::string Commit();
  // What went wrong first, as Commit would say it; empty when nothing did.
  std::string Failure() const;

 private:
  std::string target_;
  std::string temporary_;
  std::optional<FileState> found_;  // the target at Open
  int handle_ = -1;
  int error_ = 0;
  bool inputFailed_ = false;  // the error came from reading the input
};

}  // namespace quillmarch::host
