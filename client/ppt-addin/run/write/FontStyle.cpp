#include "run/write/FontStyle.h"

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kSchemeColorType = 2;
constexpr float kSizeTolerance = 0.01F;  // points
constexpr std::int32_t kUnreadRgb = -1;  // all ones, for the log alone
constexpr std::int32_t kRgbMask = 0xFFFFFF;

void LogColor(std::int32_t before, std::int32_t after) {
  // Decimal behind a hexadecimal label: the readers of these logs know it so.
  LogLine(u"PptCtrl font color restored before=0x" + Decimal(before & kRgbMask) + u" after=0x" +
          Decimal(after & kRgbMask));
}

void RestoreColor(AutomationObject* font, const FontSnapshot& snapshot) {
  ObjectRef color;
  if (!Get(font, ppt::font::kColor, color)) return;
  std::int32_t type = kMixed;
  std::int32_t rgb = 0;
  Get(color.get(), ppt::colorFormat::kType, type);
  const bool rgbRead = Get(color.get(), ppt::colorFormat::kRgb, rgb);
  if (snapshot.colorType == kSchemeColorType && snapshot.hasSchemeColor &&
      snapshot.schemeColor != 0 && type != kSchemeColorType) {
    Put(color.get(), ppt::colorFormat::kSchemeColor, snapshot.schemeColor);
    if (snapshot.hasTint) {
      Put(color.get(), ppt::colorFormat::kTintAndShade, snapshot.tint);
    }
  } else if (snapshot.hasRgb && type != kMixed && rgb != snapshot.rgb) {
    Put(color.get(), ppt::colorFormat::kRgb, snapshot.rgb);
  } else {
    return;
  }
  LogColor(rgbRead ? rgb : kUnreadRgb, snapshot.rgb);
}

void RestoreSize(AutomationObject* font, float wanted) {
  float size = 0.0F;
  if (!Get(font, ppt::font::kSize, size) || !(size > 0.0F)) return;
  if (size < wanted - kSizeTolerance || size > wanted + kSizeTolerance) {
    Put(font, ppt::font::kSize, wanted);
  }
}

void RestoreFlag(AutomationObject* font, const Member<std::int32_t>& member, std::int32_t wanted) {
  std::int32_t present = 0;
  if (wanted == kMixed || !Get(font, member, present) || present == wanted) return;
  Put(font, member, wanted);
}

}  // namespace

void TakeFontSnapshot(AutomationObject* range, FontSnapshot& snapshot) {
  snapshot = FontSnapshot{};
  ObjectRef font;
  if (range == nullptr || !Get(range, ppt::textRange::kFont, font)) return;
  snapshot.valid = true;
  ObjectRef color;
  if (Get(font.get(), ppt::font::kColor, color)) {
    AutomationObject* from = color.get();
    Get(from, ppt::colorFormat::kType, snapshot.colorType);
    snapshot.hasRgb = Get(from, ppt::colorFormat::kRgb, snapshot.rgb);
    snapshot.hasSchemeColor = Get(from, ppt::colorFormat::kSchemeColor, snapshot.schemeColor);
    snapshot.hasTint = Get(from, ppt::colorFormat::kTintAndShade, snapshot.tint);
  }
  snapshot.hasSize = Get(font.get(), ppt::font::kSize, snapshot.size) && snapshot.size > 0.0F;
  Get(font.get(), ppt::font::kBold, snapshot.bold);
  Get(font.get(), ppt::font::kItalic, snapshot.italic);
}

void RestoreFontSnapshot(AutomationObject* range, const FontSnapshot& snapshot) {
  if (range == nullptr || !snapshot.valid) return;
  ObjectRef font;
  if (!Get(range, ppt::textRange::kFont, font)) return;
  if (snapshot.hasRgb || snapshot.hasSchemeColor) RestoreColor(font.get(), snapshot);
  if (snapshot.hasSize) RestoreSize(font.get(), snapshot.size);
  RestoreFlag(font.get(), ppt::font::kBold, snapshot.bold);
  RestoreFlag(font.get(), ppt::font::kItalic, snapshot.italic);
}

void ApplyTargetFontName(AutomationObject* range, const Wide& targetFont) {
  ObjectRef font;
  if (targetFont.empty() || !Get(range, ppt::textRange::kFont, font)) return;
  Put(font.get(), ppt::font::kName, targetFont);
  Put(font.get(), ppt::font::kNameFarEast, targetFont);
  Put(font.get(), ppt::font::kNameAscii, targetFont);
}

}  // namespace quillmarch::addin
