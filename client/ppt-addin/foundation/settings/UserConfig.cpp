#include "foundation/settings/UserConfig.h"
#include "foundation/system/KnownFolders.h"

#include "foundation/log/Log.h"
#include "foundation/settings/ConfigText.h"
#include "foundation/settings/DisplayLanguage.h"
#include "foundation/system/Files.h"

namespace quillmarch {

namespace {

constexpr const char* kPaneWidthKey = "paneWidthPt";
constexpr const char* kUiLangKey = "uiLang";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string NewFile(std::string_view key, std::string_view value) {
  std::string text = "{\n  \"";
  text.append(key).append("\": ").append(value).append("\n}\n");
  return text;
}

// Puts one value into the file. `patch` makes the new text of the old one or refuses; a file that
// it refuses is not a valid configuration, so the first-time form replaces it.
template <typename Patch>
bool PutValue(std::string_view key, std::string_view value, Patch patch, std::uint32_t& errorOut) {
  errorOut = 0;
  const Wide path = ConfigPath();
  if (path.empty()) return false;
  std::string current;
  if (!ReadConfigText(path, current)) {
    const std::uint32_t error = LastFileError();
    FileFacts facts;
    if (ReadFileFacts(path, facts)) {
      // It is there and cannot be opened, as while another process puts its own in its place. To
      // begin a new one would lose what it holds.
      errorOut = error;
      return false;
    }
  }
  std::string next;
  if (current.empty() || !patch(current, next)) next = NewFile(key, value);
  return WriteConfigAtomic(path, next, &errorOut);
}

}  // namespace

Wide ConfigPath() {
  const Wide folder = GetUserDataDir();
  return folder.empty() ? Wide() : JoinPath(folder, u"config.json");
}

bool ReadConfigText(WideView path, std::string& out) {
  out.clear();
  std::string bytes;
  if (!ReadWholeFile(path, bytes)) return false;
  if (bytes.starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
  out = std::move(bytes);
  return true;
}

std::int32_t ReadPaneWidth(bool& fromFileOut) {
  std::string text;
  std::int32_t value = 0;
  fromFileOut = ReadConfigText(ConfigPath(), text) && ReadIntKey(text, kPaneWidthKey, value) &&
                value >= kMinPaneWidthPt && value <= kMaxPaneWidthPt;
  return fromFileOut ? value : kDefaultPaneWidthPt;
}

bool WritePaneWidth(std::int32_t value, std::uint32_t& errorOut) {
  return PutValue(
      kPaneWidthKey, std::to_string(value),
      [&](const std::string& text, std::string& out) {
        return PatchIntKey(text, kPaneWidthKey, value, out);
      },
      errorOut);
}

Wide ReadUiLang() {
  std::string text;
  std::string tag;
  if (!ReadConfigText(ConfigPath(), text) || !ReadStringKey(text, kUiLangKey, tag)) return {};
  return ToWide(tag);
}

bool WriteUiLang(WideView tag, std::uint32_t& errorOut) {
  errorOut = 0;
  if (!IsDisplayLanguage(tag)) return false;
  const std::string value = ToUtf8(tag);
  return PutValue(
      kUiLangKey, "\"" + value + "\"",
      [&](const std::string& text, std::string& out) {
        return PatchStringKey(text, kUiLangKey, value, out);
      },
      errorOut);
}

}  // namespace quillmarch
