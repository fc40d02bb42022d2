#include "shell/TypeLibrary.h"

#include <windows.h>

#include <oleauto.h>

#include "foundation/ComPtr.h"
#include "foundation/KnownFolders.h"
#include "foundation/WinText.h"

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
