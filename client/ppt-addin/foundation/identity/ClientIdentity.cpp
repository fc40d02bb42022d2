#include "foundation/identity/ClientIdentity.h"

#include <string>
#include <utility>

#include "foundation/automation/HostId.h"
#include "foundation/identity/IdentityRules.h"
#include "foundation/system/Clock.h"
#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/Registry.h"
#include "foundation/system/SystemIdentity.h"

namespace quillmarch {

namespace {

constexpr WideView kRegistryKey = u"Software\\Quillmarch";
constexpr WideView kInstallIdName = u"InstallId";
constexpr std::size_t kInstallIdMaxBytes = 1024;
constexpr WideView kVersionFileName = u"version.json";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

Wide& ReplacedVersion() {
  static Wide version;
  return version;
}

HostKind CurrentHost() {
  return {HostWord(), HostName(), HostVersion()};
}

}  // namespace

Wide OsDescription() {
  return DescribeOs(SystemName(), MachineWord(), ReadOsVersion, ReadShownOsVersion);
}

Wide InstallId() {
  Wide id;
  if (ReadUserText(kRegistryKey, kInstallIdName, kInstallIdMaxBytes, id) && !id.empty()) return id;
  Guid guid;
  id = NewGuid(guid) ? NewInstallId(&guid, 0) : NewInstallId(nullptr, SystemTickCount());
  // Where nothing can be stored, every call gives a new id.
  WriteUserText(kRegistryKey, kInstallIdName, id);
  return id;
}

Wide ClientVersion() {
  if (!ReplacedVersion().empty()) return ReplacedVersion();
  return VersionOf(ReadVersionFile(ModuleDirectory()));
}

void ReplaceClientVersion(Wide version) {
  ReplacedVersion() = std::move(version);
}

Wide ReadVersionFile(WideView directory) {
  if (directory.empty()) return {};
  Wide text = ReadUtf8File(JoinPath(directory, kVersionFileName));
  if (!text.empty()) return text;
  // A 32-bit module in a subfolder "x86" shares the file of the 64-bit one above it.
  const Wide last = LastComponent(directory);
  if (last.size() == directory.size() || LowerAscii(last) != u"x86") return {};
  return ReadUtf8File(JoinPath(ParentPath(directory), kVersionFileName));
}

Wide ReadUtf8File(WideView path) {
  std::string bytes;
  if (!ReadWholeFile(path, bytes)) return {};
  std::string_view text = bytes;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  return ToWide(text);
}

Wide ClientContextJson() {
  return ContextJson(InstallId(), OsDescription(), CurrentHost(), ClientVersion());
}

Wide ClientInfoJson() {
  return InfoJson(ReadVersionFile(ModuleDirectory()), OsDescription(), InstallId(), CurrentHost());
}

Wide ModuleDirectory() {
  return ParentPath(ModulePath());
}

}  // namespace quillmarch
