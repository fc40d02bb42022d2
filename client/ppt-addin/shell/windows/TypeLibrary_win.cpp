#include "shell/windows/TypeLibrary.h"

#include <windows.h>

#include <oleauto.h>

#include "foundation/automation/ComPtr.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/WinText.h"

namespace quillmarch::addin {

HRESULT LoadOwnTypeLibrary(ITypeLib** out) {
  *out = nullptr;
  return LoadTypeLibEx(ToWinText(ModulePath()).c_str(), REGKIND_NONE, out);
}

HRESULT LoadOwnTypeInfo(REFGUID id, ITypeInfo** out) {
  *out = nullptr;
  ComPtr<ITypeLib> library;
  const HRESULT code = LoadOwnTypeLibrary(library.put());
  return FAILED(code) ? code : library->GetTypeInfoOfGuid(id, out);
}

}  // namespace quillmarch::addin
