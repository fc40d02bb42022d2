// A file that appears whole or not at all: bytes go to a temporary file in the target's folder,
// which takes the target's place at the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/package/InputFile.h"

namespace quillmarch::host {

class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Takes the temporary file away unless Commit has succeeded.
  ~OutputFile();

  // Makes the temporary file. A symbolic link is followed, so that the link stays. Empty when
  // done, else one sentence: nobody may write the target, it is no regular file, its folder is
  // missing or refuses.
  std::string Open(const std::string& target);
  // Instead of Open: what is written stays in memory, to be taken by ReadAt; there is no Commit.
  std::string OpenInMemory();
  // Whether the target as it stands now is the very file that `input` reads.
  bool Replaces(const InputFile& input) const;

  bool Write(std::uint64_t offset, const void* from, std::size_t length);
  // What was written so far, in bytes; and `length` of them, false when there are not as many.
  std::uint64_t Size() const;
  bool ReadAt(std::uint64_t offset, void* to, std::size_t length) const;
  // Copies the front of `input` to the same place here.
  bool CopyFrom(const InputFile& input, std::uint64_t length);

  // Flushes to the medium and renames over the target, whose mode bits and owner stay. Empty when
  // done, else one sentence; also when a Write before has failed.
  std::string Commit();
  // What went wrong first, as Commit would say it; empty when nothing did.
  std::string Failure() const;

 private:
  std::string target_;
  std::string temporary_;
  int handle_ = -1;
  int error_ = 0;
};

}  // namespace quillmarch::host
