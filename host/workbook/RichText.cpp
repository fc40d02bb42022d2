#include "host/workbook/RichText.h"

#include "host/workbook/XString.h"

namespace quillmarch::host::workbook {
namespace {

constexpr XmlNamespace kX = XmlNamespace::kSpreadsheet;

}  // namespace

std::string ReadElementText(XmlReader& reader) {
  const std::size_t depth = reader.depth();
  std::string text;
  while (true) {
    const XmlReader::Event event = reader.Next();
    if (event == XmlReader::Event::kDone) break;
    if (event == XmlReader::Event::kText && reader.depth() == depth) reader.AppendText(text);
    if (event == XmlReader::Event::kEnd && reader.depth() == depth) break;
  }
  return text;
}

void AppendRichText(XmlReader& reader, std::string& text) {
  const std::size_t depth = reader.depth();
  while (true) {
    const XmlReader::Event event = reader.Next();
    if (event == XmlReader::Event::kDone) return;
    if (event == XmlReader::Event::kEnd && reader.depth() == depth) return;
    if (event != XmlReader::Event::kStart) continue;
    if (reader.Is(kX, "t")) {
      text += DecodeXString(ReadElementText(reader));
    } else if (!reader.Is(kX, "r")) {
      reader.SkipElement();
    }
  }
}

}  // namespace quillmarch::host::workbook
