#include "foundation/settings/DisplayLanguage.h"

#include <algorithm>

#include "foundation/automation/Automation.h"
#include "foundation/settings/UserConfig.h"
#include "foundation/system/SystemLanguage.h"
#include "foundation/text/Hex.h"

namespace quillmarch {

namespace {

constexpr DisplayLanguage kLanguages[] = {
    {u"zh-CN", u"中文（简体）"},
    {u"zh-TW", u"中文（繁體）"},
    {u"en", u"English"},
    {u"ja", u"日本語"},
    {u"ru", u"Русский"},
    {u"ms", u"Bahasa Melayu"},
    {u"th", u"ไทย"},
    {u"de", u"Deutsch"},
    {u"fr", u"Français"},
    {u"es", u"Español"},
    {u"id", u"Bahasa Indonesia"},
    {u"vi", u"Tiếng Việt"},
    {u"ko", u"한국어"},
    {u"ar", u"العربية"},
};

struct PrimaryLanguage {
  std::uint32_t primary;
  const char16_t* tag;
};

constexpr PrimaryLanguage kPrimaries[] = {
    {1, u"ar"},  {7, u"de"},  {9, u"en"},  {10, u"es"}, {12, u"fr"}, {17, u"ja"},
    {18, u"ko"}, {25, u"ru"}, {30, u"th"}, {33, u"id"}, {42, u"vi"}, {62, u"ms"},
};

constexpr std::uint32_t kLanguageMask = 0xFFFF;  // above it comes the order of sorting
constexpr std::uint32_t kPrimaryMask = 0x3FF;
constexpr int kSublanguageShift = 10;
constexpr std::uint32_t kPrimaryChinese = 4;
constexpr std::int32_t kUserInterfaceLanguage = 2;  // msoLanguageIDUI
constexpr const char16_t* kEnglish = u"en";

// One process-wide answer; main thread only.
struct Resolved {
  Wide lang = kEnglish;
  bool fromSystem = false;
};

Resolved& ResolvedState() {
  static Resolved state;
  return state;
}

bool IsTraditionalChinese(std::uint32_t id) {
  switch (id) {
    case 1028:   // Taiwan
    case 3076:   // Hong Kong
    case 5124:   // Macao
    case 31748:  // Traditional, no region
      return true;
    default:
      break;
  }
  const std::uint32_t sublanguage = (id & kLanguageMask) >> kSublanguageShift;
  return sublanguage == 1 || sublanguage == 3 || sublanguage == 5;
}

std::uint32_t HostLanguageId(AutomationObject* application) {
  ObjectRef settings;
  if (application == nullptr || !AutoGetObject(application, u"LanguageSettings", settings)) {
    return 0;
  }
  const Variant which[] = {Variant::I4(kUserInterfaceLanguage)};
  Variant value;
  if (Failed(AutoGet(settings.get(), u"LanguageID", which, value))) return 0;
  if (value.type() != VariantType::kI4 && value.type() != VariantType::kI2) return 0;
  return static_cast<std::uint32_t>(value.whole());
}

const char16_t* FindText(std::span<const StringRow> rows, WideView key) {
  const auto row = std::lower_bound(
      rows.begin(), rows.end(), key,
      [](const StringRow& left, WideView right) { return WideView(left.key) < right; });
  return row != rows.end() && WideView(row->key) == key ? row->text : u"";
}

}  // namespace

std::span<const DisplayLanguage> DisplayLanguages() {
  return kLanguages;
}

bool IsDisplayLanguage(WideView tag) {
  return std::any_of(std::begin(kLanguages), std::end(kLanguages),
                     [&](const DisplayLanguage& language) { return tag == language.tag; });
}

Wide TagOfLanguageId(std::uint32_t id) {
  const std::uint32_t primary = id & kPrimaryMask;
  if (primary == kPrimaryChinese) return IsTraditionalChinese(id) ? u"zh-TW" : u"zh-CN";
  for (const PrimaryLanguage& entry : kPrimaries) {
    if (entry.primary == primary) return entry.tag;
  }
  return kEnglish;
}

Wide ResolveLang(AutomationObject* application) {
  Resolved& state = ResolvedState();
  Wide chosen = ReadUiLang();
  if (IsDisplayLanguage(chosen)) {
    state.lang = std::move(chosen);
    state.fromSystem = false;
    return state.lang;
  }
  if (state.fromSystem) return state.lang;
  std::uint32_t id = HostLanguageId(application);
  if (id == 0) id = SystemLanguageId();
  state.lang = TagOfLanguageId(id);
  state.fromSystem = true;
  return state.lang;
}

void ForgetSystemLanguage() {
  ResolvedState().fromSystem = false;
}

std::span<const StringRow> TableFor(WideView tag) {
  std::span<const StringRow> english;
  for (const StringTable& table : StringTables()) {
    if (tag == table.tag) return table.rows;
    if (WideView(kEnglish) == table.tag) english = table.rows;
  }
  return english;
}

Wide Text(WideView key) {
  if (key.empty()) return {};
  const Wide lang = ResolveLang(nullptr);
  Wide text = FindText(TableFor(lang), key);
  if (text.empty() && lang != kEnglish) text = FindText(TableFor(kEnglish), key);
  return text;
}

Wide FormatHr(WideView text, ResultCode hr) {
  constexpr WideView kMark = u"{hr}";
  constexpr int kDigits = 8;
  const std::size_t at = text.find(kMark);
  if (at == WideView::npos) return Wide(text);
  Wide out(text.substr(0, at));
  out += u"0x" + HexText(static_cast<std::uint32_t>(hr), kDigits);
  out += text.substr(at + kMark.size());
  return out;
}

Wide PaneTitle() {
  constexpr WideView kKey = u"msg.paneTitle";
  Wide title = Text(kKey);
  return title.empty() ? Wide(FindText(TableFor(kEnglish), kKey)) : title;
}

}  // namespace quillmarch
