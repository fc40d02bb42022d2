#include "pane/windows/GdiFontList.h"

#include <windows.h>

#include <exception>

#include "foundation/system/LiveCounts.h"
#include "foundation/system/WinText.h"

namespace quillmarch::addin {

namespace {

class ScreenContext {
 public:
  ScreenContext() : context_(GetDC(nullptr)) {}
  ~ScreenContext() {
    if (context_ != nullptr) ReleaseDC(nullptr, context_);
  }
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;
  HDC get() const { return context_; }

 private:
  HDC context_;
  LiveCount<LiveKind::kGdiObject> live_;
};

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
  const ScreenContext screen;
  if (screen.get() == nullptr) return names;
  LOGFONTW all = {};
  all.lfCharSet = DEFAULT_CHARSET;
  EnumFontFamiliesExW(screen.get(), &all, &AddFamily, reinterpret_cast<LPARAM>(&names), 0);
  return names;
}

}  // namespace quillmarch::addin
