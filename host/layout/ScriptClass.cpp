#include "host/layout/ScriptClass.h"

#include <hb.h>
#include <unicode/uchar.h>

namespace quillmarch::host::layout {
namespace {

bool Within(char32_t character, char32_t first, char32_t last) {
  return character >= first && character <= last;
}

}  // namespace

std::uint32_t ScriptOf(char32_t character) {
  return static_cast<std::uint32_t>(hb_unicode_script(hb_unicode_funcs_get_default(), character));
}

bool TakesAnyScript(std::uint32_t script) {
  return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
}

FontSlot SlotOf(char32_t character) {
  if (character == U' ' || character == 0xA0 || character < 0x20) return FontSlot::kNone;
  if (character < 0x2C7) return FontSlot::kLatin;
  if (Within(character, 0xF000, 0xF0FF)) return FontSlot::kSymbol;
  if (Within(character, 0x3000, 0x30FF) || Within(character, 0xFF00, 0xFFEF) ||
      Within(character, 0x3200, 0x33FF) || Within(character, 0xFE30, 0xFE4F)) {
    return FontSlot::kEastAsian;
  }
  std::uint32_t script = ScriptOf(character);
  if (TakesAnyScript(script)) return FontSlot::kNone;
  switch (script) {
    case HB_SCRIPT_HAN:
    case HB_SCRIPT_HIRAGANA:
    case HB_SCRIPT_KATAKANA:
    case HB_SCRIPT_HANGUL:
    case HB_SCRIPT_BOPOMOFO:
    case HB_SCRIPT_YI:
      return FontSlot::kEastAsian;
    case HB_SCRIPT_LATIN:
    case HB_SCRIPT_GREEK:
    case HB_SCRIPT_CYRILLIC:
    case HB_SCRIPT_ARMENIAN:
    case HB_SCRIPT_GEORGIAN:
    case HB_SCRIPT_CHEROKEE:
    case HB_SCRIPT_ETHIOPIC:
    case HB_SCRIPT_CANADIAN_SYLLABICS:
    case HB_SCRIPT_RUNIC:
    case HB_SCRIPT_OGHAM:
    case HB_SCRIPT_COPTIC:
    case HB_SCRIPT_GLAGOLITIC:
    case HB_SCRIPT_GOTHIC:
      return FontSlot::kLatin;
    default:
      return FontSlot::kComplex;
  }
}

bool StaysWithPrevious(char32_t character) {
  if (character < 0x300) return character == 0xAD;
  return Within(character, 0x200B, 0x200F) || Within(character, 0x2060, 0x206F) ||
         Within(character, 0xFE00, 0xFE0F) || Within(character, 0xE0100, 0xE01EF) ||
         (U_GET_GC_MASK(static_cast<UChar32>(character)) & U_GC_M_MASK) != 0;
}

bool MayTurn(char16_t unit) {
  // Right-to-left scripts lie in these ranges; those beyond the first plane have lead surrogates
  // from D802 to D83B, which is close enough: the answer only saves the full algorithm.
  if (unit < 0x590) return false;  // most texts
  return unit <= 0x8FF || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
         (unit >= 0x2066 && unit <= 0x2069) || (unit >= 0xFB1D && unit <= 0xFDFF) ||
         (unit >= 0xFE70 && unit <= 0xFEFC) || (unit >= 0xD802 && unit <= 0xD803) ||
         (unit >= 0xD83A && unit <= 0xD83B);
}

bool IsHangingBlank(char16_t unit) {
  return unit == u' ' || unit == 0x3000 || unit == 0x1680 ||
         (unit >= 0x2000 && unit <= 0x200A && unit != 0x2007);
}

bool IsHangingStop(char16_t unit) {
  return unit == 0x3001 || unit == 0x3002 || unit == 0xFF0C || unit == 0xFF0E || unit == 0xFF61 ||
         unit == 0xFF64;
}

bool IsUpright(char32_t character) {
  auto orientation =
      u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_VERTICAL_ORIENTATION);
  return orientation == U_VO_UPRIGHT || orientation == U_VO_TRANSFORMED_UPRIGHT ||
         orientation == U_VO_TRANSFORMED_ROTATED;
}

const char* LanguageOf(std::uint32_t script) {
  switch (script) {
    case HB_SCRIPT_HAN:
      return "zh-cn";
    case HB_SCRIPT_BOPOMOFO:
      return "zh-tw";
    case HB_SCRIPT_HIRAGANA:
    case HB_SCRIPT_KATAKANA:
      return "ja";
    case HB_SCRIPT_HANGUL:
      return "ko";
    case HB_SCRIPT_ARABIC:
      return "ar";
    case HB_SCRIPT_HEBREW:
      return "he";
    case HB_SCRIPT_THAI:
      return "th";
    case HB_SCRIPT_DEVANAGARI:
      return "hi";
    default:
      return "en";
  }
}

}  // namespace quillmarch::host::layout
