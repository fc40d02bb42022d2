// What stands at the end of a zip archive: how many entries it says it has, before anything else is
// believed of it, and their flags.
#pragma once

#include <cstdint>

#include "host/package/InputFile.h"
#include "host/package/OutputFile.h"

namespace quillmarch::host {

// By the end record and, where there is one, its 64-bit form; 0 when there is no end record.
std::uint64_t DeclaredEntries(const InputFile& file);

// Lets the directory say of each entry with an ASCII name what the header before its data says of
// the name's encoding: entries that are copied keep that header, and strict readers want the two
// alike. An archive of the 64-bit form is left as it is. False when it cannot be read or written.
bool AgreeEntryFlags(OutputFile& archive);

}  // namespace quillmarch::host
