#include "foundation/settings/TargetStyle.h"

#include "foundation/text/JsonText.h"

namespace quillmarch {

void ReadTargetStyle(WideView json, TargetStyle& style) {
  if (JsonHasKey(json, u"targetFontBold")) {
    const double bold = JsonGetNumber(json, u"targetFontBold");
    // Exactly 0 or 1, as the page sends them.
    if (bold == 0.0) {
      style.bold = 0;
    } else if (bold == 1.0) {
      style.bold = 1;
    } else {
      style.bold = -1;
    }
  }
  if (JsonHasKey(json, u"targetFont")) style.font = JsonGetString(json, u"targetFont");
  if (JsonHasKey(json, u"targetFontSize")) style.size = JsonGetNumber(json, u"targetFontSize");
  if (JsonHasKey(json, u"targetFontColor")) {
    std::int32_t color = -1;
    style.color = ParseHexColor(JsonGetString(json, u"targetFontColor"), color) ? color : -1;
  }
}

}  // namespace quillmarch
