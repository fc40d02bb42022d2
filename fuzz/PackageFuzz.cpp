// Packages from nowhere: the first byte chooses between a whole zip archive and one XML document,
// whose verdict is held against a second reader's.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "host/package/Package.h"
#include "host/package/xml/Namespaces.h"
#include "host/package/xml/Utf16Xml.h"
#include "host/package/xml/XmlCheck.h"
#include "host/package/xml/XmlText.h"
#include "package/xml/XmlJudge.h"

namespace quillmarch::host {

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// Beyond ASCII the two readers know different editions of the list of name characters.
std::string WithoutWideCharacters(const std::string& xml) {
  std::string result = xml;
  for (char& c : result) {
    if (static_cast<unsigned char>(c) >= 0x80) c = 'x';
  }
  return result;
}

bool SameVerdict(const std::string& xml) {
  const XmlFault fault = CheckXml(xml).fault;
  return IsOurOwnRule(fault) || (fault == XmlFault::kNone) == ExpatAccepts(xml);
}

void WalkElements(pugi::xml_document& document, const std::string& xml) {
  struct Walker : pugi::xml_tree_walker {
    bool for_each(pugi::xml_node& node) override {
      if (node.type() != pugi::node_element) return true;
      const std::optional<std::size_t> offset = OffsetOf(*text, node);
      Require(offset.has_value());
      const ElementSpan span = FindElement(*text, *offset);
      Require(span.found && span.begin + 1 == *offset && span.end <= text->size());
      Require(span.contentBegin <= span.contentEnd && span.contentEnd <= span.end);
      for (const pugi::xml_attribute attribute : node.attributes()) {
        const AttributeSpan found = FindAttribute(*text, *offset, attribute.name());
        Require(found.found && found.valueEnd < text->size());
      }
      NamespaceOf(node);
      return --most > 0;
    }
    const std::string* text = nullptr;
    int most = 200;
  };
  Walker walker;
  walker.text = &xml;
  document.traverse(walker);
}

void FuzzXml(const std::string& xml) {
  if (DetectXmlForm(xml).encoding != XmlEncoding::kUtf8) return;
  Require(SameVerdict(xml) || SameVerdict(WithoutWideCharacters(xml)));
  if (CheckXml(xml).fault == XmlFault::kNone) {
    pugi::xml_document document;
    Require(ParseXml(document, xml));
    WalkElements(document, xml);
  }
  Require(CheckXml("<a b=\"" + EscapeAttribute(xml) + "\">" + EscapeText(xml) + "</a>").fault ==
          XmlFault::kNone);
}

void FuzzZip(const std::string& bytes) {
  const int file = memfd_create("package", MFD_CLOEXEC);
  Require(file >= 0);
  Require(write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
  PackageLimits limits;
  limits.maxPartBytes = limits.maxXmlBytes = 1 << 20;
  const auto opened = Package::Open("/proc/self/fd/" + std::to_string(file), limits);
  Require(opened.ok() || !opened.error().words.empty());
  if (opened.ok()) {
    for (const std::string& name : opened.value()->PartNames()) {
      Require(opened.value()->HasPart(name));
      static_cast<void>(opened.value()->Relationships(name));
      const auto xml = opened.value()->ReadXmlPart(name);
      Require(xml.ok() || !xml.error().words.empty());
      // However it is spelt, the list of content types is what the copy has to open with.
      if (name[0] == '[' || name[0] == '%') continue;
      opened.value()->PutPart(name, "<a/>");
      Require(opened.value()->ReadPart(name).ok());
    }
    const std::string path = "/dev/shm/quillmarch-fuzz-" + std::to_string(getpid());
    const auto saved = opened.value()->Save(path);
    if (saved) Require(Package::Open(path, limits).ok());
    unlink(path.c_str());
  }
  close(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (data[0] == 'Z') {
    FuzzZip(bytes);
  } else {
    FuzzXml(bytes);
  }
  return 0;
}

}  // namespace quillmarch::host
