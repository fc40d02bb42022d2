// The flags of a zip archive's entries, which stand twice: before the data and in the directory.
#pragma once

#include "host/package/OutputFile.h"

// Lets the directory say of each entry with an ASCII name what the header before its data says of
// the name's encoding: entries that are copied keep that header, and strict readers want the two
// alike. An archive of the 64-bit form is left as it is. False when it cannot be read or written.
bool AgreeEntryFlags(OutputFile& archive);
