#include "package/zip/ZipBuilder.h"

#include <libdeflate.h>

#include <memory>

namespace quillmarch::host {

namespace {

void Put(std::string& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) {
    out += static_cast<char>(value & 0xFF);
    value >>= 8;
  }
}

std::string Deflated(const std::string& content) {
  libdeflate_compressor* const compressor = libdeflate_alloc_compressor(6);
  std::string out(libdeflate_deflate_compress_bound(compressor, content.size()), '\0');
  out.resize(libdeflate_deflate_compress(compressor, content.data(), content.size(), out.data(),
                                         out.size()));
  libdeflate_free_compressor(compressor);
  return out;
}

}  // namespace

std::string BuildZip(const std::vector<BuiltEntry>& entries) {
  std::string out;
  std::string directory;
  for (const BuiltEntry& entry : entries) {
    const std::string data = entry.stored ? entry.content : Deflated(entry.content);
    std::uint32_t crc = libdeflate_crc32(0, entry.content.data(), entry.content.size());
    if (entry.wrongCrc) crc ^= 1;
    const std::uint64_t size = entry.declaredSize >= 0
                                   ? static_cast<std::uint64_t>(entry.declaredSize)
                                   : entry.content.size();
    const int method = entry.method >= 0 ? entry.method : (entry.stored ? 0 : 8);
    std::string common;
    Put(common, 20, 2);
    Put(common, entry.flags, 2);
    Put(common, static_cast<std::uint64_t>(method), 2);
    Put(common, entry.dosTime, 4);
    Put(common, crc, 4);
    Put(common, data.size(), 4);
    Put(common, size, 4);
    Put(common, entry.name.size(), 2);
    Put(common, entry.extra.size(), 2);
    const std::size_t offset = out.size();
    out += "PK\3\4" + common + entry.name + entry.extra + data;
    directory += "PK\1\2";
    Put(directory, 20, 2);
    directory += common;
    Put(directory, 0, 2 + 2 + 2 + 4);
    Put(directory, offset, 4);
    directory += entry.name + entry.extra;
  }
  const std::size_t start = out.size();
  out += directory + "PK\5\6";
  Put(out, 0, 4);
  Put(out, entries.size(), 2);
  Put(out, entries.size(), 2);
  Put(out, directory.size(), 4);
  Put(out, start, 4);
  Put(out, 0, 2);
  return out;
}

std::vector<BuiltEntry> MinimalEntries() {
  BuiltEntry types;
  types.name = "[Content_Types].xml";
  types.content = kPlainContentTypes;
  BuiltEntry relationships;
  relationships.name = "_rels/.rels";
  relationships.content =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
      "<Relationship Id=\"rId1\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/"
      "relationships/officeDocument\" Target=\"ppt/presentation.xml\"/></Relationships>";
  BuiltEntry presentation;
  presentation.name = "ppt/presentation.xml";
  presentation.content =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
      "<p:presentation xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\">"
      "<p:sldSz cx=\"9144000\" cy=\"6858000\"/></p:presentation>";
  return {types, relationships, presentation};
}

}  // namespace quillmarch::host
