// A copy of a zip archive with some entries replaced, removed or added.
#pragma once

#include <string>
#include <vector>

#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/zip/PartCompressor.h"
#include "host/package/zip/ZipDirectory.h"

namespace quillmarch::host {

struct EntryChange {
  const PackedPart* part = nullptr;  // what takes its place; null: it stays
  bool removed = false;
};

struct ZipAddition {
  std::string name;
  const PackedPart* part = nullptr;
};

// Writes into `output`, not yet committed. `changes` has one for each entry. All other entries, the
// gaps between them, the order, the comment and what follows the archive stay to the byte; a
// replaced entry keeps its names, times and attributes. New entries follow all others and have the
// earliest date that the format knows, so that the same edit gives the same bytes. Empty when done,
// else one sentence.
std::string CopyZip(const InputFile& file, const ZipDirectory& directory,
                    const std::vector<EntryChange>& changes, const std::vector<ZipAddition>& added,
                    OutputFile& output);

}  // namespace quillmarch::host
