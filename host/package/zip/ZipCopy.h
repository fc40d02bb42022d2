// A copy of a zip archive with some entries replaced.
#pragma once

#include <string>
#include <vector>

#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"
#include "host/package/zip/PartCompressor.h"
#include "host/package/zip/ZipDirectory.h"

namespace quillmarch::host {

// Writes into `output`, not yet committed. `parts` has for each entry what takes its place, or
// null. All other entries, the gaps between them, the order, the comment and what follows the
// archive stay to the byte; a replaced entry keeps its names, times and attributes. Empty when
// done, else one sentence.
std::string CopyZip(const InputFile& file, const ZipDirectory& directory,
                    const std::vector<const PackedPart*>& parts, OutputFile& output);

}  // namespace quillmarch::host
