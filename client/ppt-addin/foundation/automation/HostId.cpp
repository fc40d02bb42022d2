#include "foundation/automation/HostId.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "foundation/automation/Automation.h"
#include "foundation/system/KnownFolders.h"

namespace quillmarch {

namespace {

HostKind& Host() {
  // Never destroyed, as a detached thread may read it while the process ends.
  static HostKind& host = *std::make_unique<HostKind>().release();
  return host;
}

// Property get only, where AutoGet would ask for a method as well.
Wide ReadText(AutomationObject* application, WideView member) {
  Variant value;
  if (Failed(AutoGetProperty(application, member, value))) return {};
  return value.type() == VariantType::kText ? value.takeText() : Wide();
}

bool NameSaysWps(const Wide& name) {
  static constexpr std::array<WideView, 4> kMarks = {u"WPS", u"Kingsoft", u"\u91d1\u5c71", u"ET"};
  return std::any_of(kMarks.begin(), kMarks.end(),
                     [&](WideView mark) { return name.find(mark) != Wide::npos; });
}

}  // namespace

const Wide& HostWord() {
  return Host().word;
}
const Wide& HostName() {
  return Host().name;
}
const Wide& HostVersion() {
  return Host().version;
}

bool IsWpsImage(WideView imageName) {
  const Wide name = LowerAscii(imageName);
  return name == u"wps.exe" || name == u"wpp.exe" || name == u"et.exe";
}

HostKind IdentifyHost(WideView startWord, Wide name, Wide version, WideView imageName) {
  HostKind host;
  host.word = startWord;
  if (NameSaysWps(name) || IsWpsImage(imageName)) {
    host.word = startWord == u"excel" ? u"wps-excel" : u"wps";
  }
  host.name = std::move(name);
  host.version = std::move(version);
  return host;
}

void DetectHost(AutomationObject* application) {
  Wide name = ReadText(application, u"Name");
  Wide version = ReadText(application, u"Version");
  Host() = IdentifyHost(u"ppt", std::move(name), std::move(version), ProcessImageName());
}

bool IsWpsHost() {
  return HostWord() == u"wps" || HostWord() == u"wps-excel";
}

bool IsWpsProcess() {
  return IsWpsHost() || IsWpsImage(ProcessImageName());
}

}  // namespace quillmarch
