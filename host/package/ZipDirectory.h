// How many entries a zip archive says it has, before anything else is believed of it.
#pragma once

#include <cstdint>

#include "host/package/InputFile.h"

// By the end record and, where there is one, its 64-bit form; 0 when there is no end record.
std::uint64_t DeclaredEntries(const InputFile& file);
