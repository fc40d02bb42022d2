// The zip archive under a package, through libzip: its entries, their bytes, and a copy of it with
// some entries replaced. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/zip/PartCompressor.h"

namespace quillmarch::host {

struct ZipEntry {
  std::string name;
  std::uint64_t size = 0;    // inflated, as declared
  std::uint64_t packed = 0;  // in the archive
  std::uint32_t crc = 0;
  std::time_t time = 0;
  std::uint16_t method = 0;
  bool encrypted = false;
};

struct ZipReplacement {
  std::size_t entry = 0;
  const PackedPart* part = nullptr;
};

class ZipArchive {
 public:
  // `file` outlives the archive.
  explicit ZipArchive(const InputFile& file);
  ~ZipArchive();

  // Reads the directory and compares it with the entries. Empty when all is well, else one
  // sentence.
  std::string Open(std::size_t maxEntries);
  const std::vector<ZipEntry>& Entries() const;

  // The entry's bytes, checked against its declared size and CRC. Empty when all is well, else why
  // not, as the end of a sentence. Memory: twice the declared size at most. Any thread.
  std::string Read(std::size_t entry, std::string& bytes);

  // Writes the archive with the replaced entries into `output`, not yet committed; everything else
  // keeps its compressed bytes, order and times. False when it failed: the output's Failure() says
  // why, or `reason` when it was not the output.
  bool Write(const std::vector<ZipReplacement>& replacements, OutputFile& output,
             std::string& reason);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Inflates `deflated` to exactly `size` bytes. Empty when all is well, else why not.
std::string Inflate(const std::string& deflated, std::uint64_t size, std::string& bytes);
std::uint32_t Crc32(const std::string& bytes);

}  // namespace quillmarch::host
