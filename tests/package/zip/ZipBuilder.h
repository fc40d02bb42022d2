// Zip archives put together byte by byte, so that they can lie.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::host {

struct BuiltEntry {
  std::string name = {};
  std::string content = {};
  bool stored = false;
  // Lies and oddities; the entry is honest without them.
  std::int64_t declaredSize = -1;  // instead of the content's
  bool wrongCrc = false;
  std::uint16_t flags = 0;
  int method = -1;
  std::string extra = {};
  std::uint32_t dosTime = 0x5A215A21;  // date above time
};

// The archive's bytes.
std::string BuildZip(const std::vector<BuiltEntry>& entries);

// A minimal honest package: content types, package relationships, one presentation part.
std::vector<BuiltEntry> MinimalEntries();

inline constexpr std::string_view kPlainContentTypes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" "
    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
    "<Override PartName=\"/ppt/presentation.xml\" ContentType=\"application/"
    "vnd.openxmlformats-officedocument.presentationml.presentation.main+xml\"/></Types>";

}  // namespace quillmarch::host
