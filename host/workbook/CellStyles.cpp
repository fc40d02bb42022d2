#include "host/workbook/CellStyles.h"

#include <string>
#include <unordered_map>

#include "host/package/xml/XmlReader.h"
#include "host/workbook/CellNumber.h"
#include "host/workbook/XString.h"

namespace quillmarch::host::workbook {
namespace {

constexpr std::size_t kMostStyles = 65536;  // Excel takes 65,490
constexpr XmlNamespace kX = XmlNamespace::kSpreadsheet;

}  // namespace

CellStyles::CellStyles() {
  formats_.emplace_back("General");
}

CellStyles::CellStyles(std::string_view xml) : CellStyles() {
  std::unordered_map<unsigned, std::string> codes;
  std::vector<unsigned> ids;
  XmlReader reader(xml);
  bool cellFormats = false;
  for (auto event = reader.Next(); event != XmlReader::Event::kDone; event = reader.Next()) {
    if (reader.Is(kX, "cellXfs")) cellFormats = event == XmlReader::Event::kStart;
    if (event != XmlReader::Event::kStart) continue;
    if (reader.Is(kX, "numFmt")) {
      const unsigned id = WholeNumber(reader.RawAttribute("numFmtId"), 0);
      codes.emplace(id, DecodeXString(reader.Attribute("formatCode")));
    } else if (cellFormats && reader.Is(kX, "xf") && ids.size() < kMostStyles) {
      ids.push_back(WholeNumber(reader.RawAttribute("numFmtId"), 0));
    }
  }
  std::unordered_map<unsigned, std::uint32_t> known{{0, 0}};
  for (const unsigned id : ids) {
    const auto [entry, fresh] = known.emplace(id, static_cast<std::uint32_t>(formats_.size()));
    if (fresh) {
      const auto own = codes.find(id);
      formats_.emplace_back(own != codes.end() ? std::string_view(own->second) : BuiltInFormat(id));
    }
    formatOf_.push_back(entry->second);
  }
}

const NumberFormat& CellStyles::FormatOf(std::uint32_t style) const {
  return formats_[style < formatOf_.size() ? formatOf_[style] : 0];
}

}  // namespace quillmarch::host::workbook
