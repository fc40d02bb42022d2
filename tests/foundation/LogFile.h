// The log as it stands in its file.
#pragma once

#include "TempFolder.h"
#include "foundation/KnownFolders.h"
#include "foundation/Log.h"

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
