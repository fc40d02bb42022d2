#include "pane/GdiFontList.h"

#include <windows.h>

#include <exception>

#include "foundation/WinText.h"

namespace {

// Not 0 goes on. No exception may pass through the enumeration.
int CALLBACK AddFamily(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM into) {
  try {
    reinterpret_cast<std::vector<Wide>*>(into)->push_back(FromWinText(font->lfFaceName));
  } catch (const std::exception&) {
    return 0;
  }
  return 1;
}

}  // namespace

std::vector<Wide> GdiFontList::FamilyNames() {
  std::vector<Wide> names;
  const HDC screen = GetDC(nullptr);
  if (screen == nullptr) return names;
  LOGFONTW all = {};
  all.lfCharSet = DEFAULT_CHARSET;
  EnumFontFamiliesExW(screen, &all, &AddFamily, reinterpret_cast<LPARAM>(&names), 0);
  ReleaseDC(nullptr, screen);
  return names;
}
