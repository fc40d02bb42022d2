// The bearer token for a service, from a file, so that it shows in no list of processes.
#pragma once

#include <string>

namespace quillmarch::host {

// The first word of the file; the rest is not looked at. False with a sentence in `error` when the
// file cannot be read or the word cannot go into a request's header.
bool ReadTokenFile(const std::string& path, std::string& token, std::string& error);

}  // namespace quillmarch::host
