#include "terminology/LocalStore.h"

#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kProductFolder = u"Quillmarch";
constexpr WideView kGlossaries = u"glossaries";
constexpr WideView kInstructions = u"instructions";
constexpr WideView kFilesFolder = u"global";

Wide MakeFolder(WideView kind) {
  StoreFolder folder = FolderBelow(StoreRoot(), kind);
  CreateFolder(folder.kind);
  CreateFolder(folder.files);
  return folder.files;
}

}  // namespace

Wide StoreRoot() {
  const Wide data = RoamingDataFolder();
  if (data.empty()) return {};
  Wide root = JoinPath(data, kProductFolder);
  CreateFolder(root);
  return root;
}

StoreFolder FolderBelow(const Wide& root, WideView kind) {
  StoreFolder folder;
  folder.kind = JoinPath(root, kind);
  folder.files = JoinPath(folder.kind, kFilesFolder);
  return folder;
}

Wide GlossaryFolder() {
  return MakeFolder(kGlossaries);
}

Wide InstructionFolder() {
  return MakeFolder(kInstructions);
}

}  // namespace quillmarch::addin
