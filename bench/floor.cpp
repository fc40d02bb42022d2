// The floor that the whole command is measured against: a bare loop over libzip and pugixml that
// puts the same marks on the same paragraphs as the pseudo engine does, and knows no rule beyond.
//
//   bench_floor SOURCE RESULT
#include <zip.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr unsigned kParse = pugi::parse_full | pugi::parse_ws_pcdata;
constexpr unsigned kFormat = pugi::format_raw | pugi::format_no_declaration;

bool HoldsText(std::string_view name) {
  return (name.starts_with("ppt/slides/slide") || name.starts_with("ppt/notesSlides/notesSlide")) &&
         name.ends_with(".xml");
}

bool HasLetter(std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80 || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z')) return true;
  }
  return false;
}

void Mark(pugi::xml_node paragraph) {
  std::string text;
  pugi::xml_node first;
  for (const pugi::xml_node child : paragraph.children()) {
    const std::string_view name = child.name();
    if (name == "a:br") text += ' ';
    if (name != "a:r" && name != "a:fld") continue;
    if (!first) first = child;
    text += child.child("a:t").text().get();
  }
  if (!first || !HasLetter(text)) return;
  for (pugi::xml_node child = paragraph.first_child(); child;) {
    const pugi::xml_node next = child.next_sibling();
    const std::string_view name = child.name();
    if (child != first && (name == "a:r" || name == "a:fld" || name == "a:br")) {
      paragraph.remove_child(child);
    }
    child = next;
  }
  first.child("a:t").text().set(("\xE2\x9F\xA6" + text + "\xE2\x9F\xA7").c_str());
}

void MarkAll(pugi::xml_node node) {
  for (const pugi::xml_node child : node.children()) {
    if (std::string_view(child.name()) == "a:p") {
      Mark(child);
    } else {
      MarkAll(child);
    }
  }
}

[[noreturn]] void Fail(const char* what) {
  std::fprintf(stderr, "bench_floor: %s\n", what);
  std::exit(1);
}

std::string ReadEntry(zip_t* archive, zip_uint64_t index) {
  zip_stat_t stat;
  if (zip_stat_index(archive, index, 0, &stat) != 0) Fail("an entry has no size");
  std::string bytes(stat.size, '\0');
  zip_file_t* file = zip_fopen_index(archive, index, 0);
  if (!file ||
      zip_fread(file, bytes.data(), bytes.size()) != static_cast<zip_int64_t>(bytes.size())) {
    Fail("an entry cannot be read");
  }
  zip_fclose(file);
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) Fail("usage: bench_floor SOURCE RESULT");
  std::filesystem::copy_file(argv[1], argv[2], std::filesystem::copy_options::overwrite_existing);
  zip_t* archive = zip_open(argv[2], 0, nullptr);
  if (!archive) Fail("no zip");
  const zip_int64_t count = zip_get_num_entries(archive, 0);
  for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
    if (!HoldsText(zip_get_name(archive, i, 0))) continue;
    const std::string bytes = ReadEntry(archive, i);
    pugi::xml_document document;
    if (!document.load_buffer(bytes.data(), bytes.size(), kParse)) Fail("a part is no XML");
    MarkAll(document);
    std::ostringstream out;
    document.save(out, "", kFormat);
    const std::string edited = std::move(out).str();
    // libzip frees the copy with the source.
    void* copy = std::malloc(edited.size());
    if (!copy) Fail("no memory");
    std::copy(edited.begin(), edited.end(), static_cast<char*>(copy));
    zip_source_t* source = zip_source_buffer(archive, copy, edited.size(), 1);
    if (!source || zip_file_replace(archive, i, source, 0) != 0)
      Fail("an entry cannot be replaced");
  }
  if (zip_close(archive) != 0) Fail("the result cannot be written");
  return 0;
}
