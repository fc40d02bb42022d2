#include "foundation/system/Files.h"

#include <algorithm>

namespace quillmarch {

namespace {

std::size_t LastSeparator(WideView path) {
  const auto parts = [](char16_t unit) { return unit == kPathSeparator || unit == u'/'; };
  const auto found = std::find_if(path.rbegin(), path.rend(), parts);
  return found == path.rend() ? WideView::npos : static_cast<std::size_t>(path.rend() - found) - 1;
}

}  // namespace

Wide JoinPath(WideView folder, WideView name) {
  Wide path(folder);
  path += kPathSeparator;
  path += name;
  return path;
}

Wide ParentPath(WideView path) {
  const std::size_t at = LastSeparator(path);
  return at == WideView::npos ? Wide() : Wide(path.substr(0, at));
}

Wide LastComponent(WideView path) {
  const std::size_t at = LastSeparator(path);
  return Wide(at == WideView::npos ? path : path.substr(at + 1));
}

bool ReplaceWholeFile(WideView path, std::string_view bytes, WideView suffix) {
  const Wide temporary = Wide(path) + Wide(suffix);
  DeleteOneFile(temporary);
  if (!AppendToFile(temporary, bytes) || !MoveOneFile(temporary, path)) {
    DeleteOneFile(temporary);
    return false;
  }
  return true;
}

}  // namespace quillmarch
