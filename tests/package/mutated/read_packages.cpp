// Reads packages and prints what it got, for a script that compares it with another reader:
//
//     read_packages FILE...
//
// For each file one line: "refused TAB reason", or "read" and for each part its name, size and
// CRC-32 in hex, all separated by tabs. A part that cannot be read refuses the file.
#include <cstdio>
#include <string>

#include "host/package/Package.h"
#include "host/package/zip/ZipArchive.h"

namespace {

std::string Report(const std::string& path) {
  using namespace quillmarch::host;
  const auto opened = Package::Open(path);
  if (!opened.ok()) return "refused\t" + opened.error().words;
  std::string line = "read";
  for (const std::string& name : opened.value()->PartNames()) {
    const auto part = opened.value()->ReadPart(name);
    if (!part.ok()) return "refused\t" + part.error().words;
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "\t%zu\t%08x", part.value().size(), Crc32(part.value()));
    line += "\t" + name + numbers;
  }
  return line;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) std::printf("%s\n", Report(argv[i]).c_str());
}
