#include "host/workbook/SharedStrings.h"

#include "host/workbook/RichText.h"

namespace quillmarch::host::workbook {

SharedStrings::SharedStrings(std::string_view xml) {
  XmlReader reader(xml);
  for (auto event = reader.Next(); event != XmlReader::Event::kDone; event = reader.Next()) {
    if (event != XmlReader::Event::kStart || !reader.Is(XmlNamespace::kSpreadsheet, "si")) continue;
    AppendRichText(reader, texts_);
    ends_.push_back(static_cast<std::uint32_t>(texts_.size()));
  }
}

std::string_view SharedStrings::Text(std::size_t index) const {
  if (index >= ends_.size()) return {};
  const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
  return std::string_view(texts_).substr(begin, ends_[index] - begin);
}

}  // namespace quillmarch::host::workbook
