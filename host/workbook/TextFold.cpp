#include "host/workbook/TextFold.h"

#include <unicode/uchar.h>

#include <cstddef>
#include <cstdint>

#include "foundation/text/Utf8.h"

namespace quillmarch::host::workbook {

std::string FoldCase(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Char decoded = DecodeUtf8(text.substr(at));
    if (decoded.length == 0) {
      folded += text[at++];
      continue;
    }
    const UChar32 small = u_foldCase(static_cast<UChar32>(decoded.code), U_FOLD_CASE_DEFAULT);
    AppendUtf8(folded, static_cast<std::uint32_t>(small));
    at += decoded.length;
  }
  return folded;
}

}  // namespace quillmarch::host::workbook
