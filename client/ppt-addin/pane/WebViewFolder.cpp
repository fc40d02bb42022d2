#include "pane/WebViewFolder.h"

#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kProductFolder = u"Quillmarch";
constexpr WideView kWebViewFolder = u"WebView2";

}  // namespace

Wide WebViewDataFolder() {
  const Wide data = LocalDataFolder();
  if (data.empty()) return {};
  const Wide product = JoinPath(data, kProductFolder);
  CreateFolder(product);
  Wide folder = JoinPath(product, kWebViewFolder);
  CreateFolder(folder);
  return folder;
}

}  // namespace quillmarch::addin
