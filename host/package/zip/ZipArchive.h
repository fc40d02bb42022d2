// The zip archive under a package: its entries, their bytes, and a copy of it with some entries
// replaced, in which everything else keeps its bytes.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/zip/PartCompressor.h"
#include "host/package/zip/ZipCopy.h"
#include "host/package/zip/ZipDirectory.h"

namespace quillmarch::host {

struct ZipReplacement {
  std::size_t entry = 0;
  const PackedPart* part = nullptr;
};

struct ZipChanges {
  std::vector<ZipReplacement> replaced;
  std::set<std::size_t> removed;
  std::vector<ZipAddition> added;
};

class ZipArchive {
 public:
  // `file` outlives the archive.
  explicit ZipArchive(const InputFile& file) : file_(file) {}

  // Reads and judges the directory. Empty when all is well, else one sentence.
  std::string Open(std::size_t maxEntries);
  const std::vector<ZipEntry>& Entries() const { return directory_.entries; }

  // The entry's bytes, checked against its declared size and CRC. Empty when all is well, else why
  // not, as the end of a sentence. Memory: twice the declared size at most. Any thread.
  std::string Read(std::size_t entry, std::string& bytes) const;

  // Writes the archive with the changes into `output`, not yet committed; everything else keeps its
  // bytes and order, and new entries follow the others. An entry that is copied and has never been
  // read is checked against its CRC first. Empty when done, else one sentence.
  std::string Write(const ZipChanges& changes, OutputFile& output) const;

 private:
  std::string ReadUnchecked(const ZipEntry& entry, std::string& bytes) const;
  std::string CheckCopied(std::size_t entry) const;
  bool CrcOfStored(const ZipEntry& entry, std::uint32_t& crc) const;
  bool CrcOfDeflated(const ZipEntry& entry, std::uint32_t& crc) const;

  const InputFile& file_;
  ZipDirectory directory_;
  // By entry: its bytes were read and agree with its CRC.
  std::unique_ptr<std::atomic<bool>[]> sound_;
};

// Inflates `deflated` to exactly `size` bytes. Empty when all is well, else why not.
std::string Inflate(const std::string& deflated, std::uint64_t size, std::string& bytes);
// Of `bytes` after what has the checksum `before`.
std::uint32_t Crc32(std::string_view bytes, std::uint32_t before = 0);

}  // namespace quillmarch::host
