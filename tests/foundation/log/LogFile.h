// The log as it stands in its file.
#pragma once

#include "foundation/log/Log.h"
#include "foundation/system/FileBytes.h"
#include "foundation/system/KnownFolders.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

inline Wide LogText() {
  const std::string bytes = ReadBytes(JoinPath(LogDirectory(), u"QuillmarchPane_ppt_trace.log"));
  Wide text(bytes.size() / 2, u'\0');
  bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * 2);
  return text;
}

inline std::size_t CountOf(const Wide& text, WideView part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != Wide::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

}  // namespace quillmarch::addin
