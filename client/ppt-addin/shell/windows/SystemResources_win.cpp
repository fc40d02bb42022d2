#include "shell/windows/SystemResources.h"

#include "foundation/system/WinText.h"

namespace quillmarch::addin {

bool SystemResources::Load(const char16_t* type, std::uint16_t id, std::string& bytes) {
  bytes.clear();
  const HRSRC found = FindResourceW(module_, MAKEINTRESOURCEW(id), ToWinText(type).c_str());
  if (found == nullptr) return false;
  const HGLOBAL loaded = LoadResource(module_, found);
  const void* const at = loaded == nullptr ? nullptr : LockResource(loaded);
  if (at == nullptr) return false;
  bytes.assign(static_cast<const char*>(at), SizeofResource(module_, found));
  return true;
}

}  // namespace quillmarch::addin
