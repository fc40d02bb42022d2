// OLE compound files: what password-protected and old binary presentations are instead of a zip.
#pragma once

#include <string>

#include "host/package/InputFile.h"

namespace quillmarch::host {

enum class CompoundKind {
  kNone,       // no compound file
  kEncrypted,  // any Office file with a password
  kPresentation,
  kWorkbook,
  kOther,
};

CompoundKind CompoundKindOf(const InputFile& file);

// One sentence that says which of them the file is; empty when it is no compound file.
std::string CompoundFileSentence(const InputFile& file);

}  // namespace quillmarch::host
