#include "host/package/xml/Splice.h"

#include <algorithm>
#include <utility>

namespace quillmarch::host {

std::string ApplyEdits(std::string_view original, std::vector<Edit> edits) {
  // A replacement at an offset takes bytes that stand behind an insertion at the same offset.
  std::stable_sort(edits.begin(), edits.end(), [](const Edit& left, const Edit& right) {
    if (left.offset != right.offset) return left.offset < right.offset;
    return left.length == 0 && right.length != 0;
  });
  std::size_t size = original.size();
  for (const Edit& edit : edits) size += edit.text.size();

  std::string result;
  result.reserve(size);
  std::size_t copied = 0;
  for (const Edit& edit : edits) {
    const std::size_t offset = std::clamp(edit.offset, copied, original.size());
    result.append(original.substr(copied, offset - copied));
    result.append(edit.text);
    copied = offset + std::min(edit.length, original.size() - offset);
  }
  result.append(original.substr(copied));
  return result;
}

}  // namespace quillmarch::host
