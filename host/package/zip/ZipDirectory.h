// The directory of a zip archive, read and judged before anything in the archive is believed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/package/InputFile.h"

namespace quillmarch::host {

inline constexpr std::uint16_t kZipStored = 0;
inline constexpr std::uint16_t kZipDeflated = 8;

struct ZipEntry {
  std::string name;
  std::uint64_t size = 0;    // inflated, as declared
  std::uint64_t packed = 0;  // in the archive
  std::uint32_t crc = 0;
  std::uint16_t method = 0;
  bool encrypted = false;
  std::uint64_t headerAt = 0;  // of the header before the data
  std::uint64_t dataAt = 0;
  // In the directory's own bytes: the entry's record, and the field that holds `headerAt`.
  std::size_t recordAt = 0;
  std::size_t recordBytes = 0;
  std::size_t offsetFieldAt = 0;
  bool offsetIs64 = false;
};

struct ZipDirectory {
  std::vector<ZipEntry> entries;           // in the directory's order
  std::vector<std::size_t> physicalOrder;  // the same by `headerAt`
  std::string records;                     // the directory's own bytes
  std::uint64_t recordsAt = 0;
  std::string tail;   // all that follows: the end records, a comment, and what else there is
  bool is64 = false;  // with a 64-bit end record at the front of the tail
  std::size_t locatorAt = 0;  // in the tail, of the 64-bit record's locator
  std::size_t endAt = 0;      // in the tail
};

// Empty when all is well, else one sentence. Whatever two readers could take differently is
// refused: two entries of one name, entries that overlap, a directory that is not where the end
// record says, a header before an entry's data that names another entry, method or size than the
// directory does. Dates, version numbers, and bytes after the archive are nobody's business.
std::string ReadZipDirectory(const InputFile& file, std::size_t maxEntries,
                             ZipDirectory& directory);

}  // namespace quillmarch::host
