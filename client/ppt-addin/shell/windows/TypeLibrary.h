// The type library in this module. Windows only.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace quillmarch::addin {

inline constexpr GUID kPptAddinLibrary = {
    0x3F7A9C21, 0x8E44, 0x4D5B, {0x9A, 0x16, 0x72, 0xC5, 0xD8, 0xE3, 0xF0, 0xA1}};
inline constexpr WORD kLibraryMajor = 1;
inline constexpr WORD kLibraryMinor = 0;

// From the module's own file, registered or not.
HRESULT LoadOwnTypeLibrary(ITypeLib** out);

// The description of one of our interfaces.
HRESULT LoadOwnTypeInfo(REFGUID id, ITypeInfo** out);

}  // namespace quillmarch::addin
