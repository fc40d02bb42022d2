// What the command has written, so that a later run knows its own outputs from files that somebody
// has edited since. Kept in the user's data folder as sizes and checksums, without names.
#pragma once

#include <string>

namespace quillmarch::host {

enum class OutputOrigin {
  kUnknown,  // this command has not written it, or has forgotten
  kEdited,   // it has, and the file is no longer what was written
  kOurs,
};

// Of an existing file.
OutputOrigin OriginOf(const std::string& path);

// To be called after a file was written. Where the data folder cannot be written, nothing is
// remembered, and a later run asks.
void RememberOutput(const std::string& path);

}  // namespace quillmarch::host
