#include <windows.h>

#include <algorithm>

#include "foundation/settings/UserConfig.h"
#include "foundation/system/WinText.h"

namespace quillmarch {

namespace {

constexpr std::size_t kMaxPiece = 0x100000;

bool WriteAll(HANDLE file, const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const DWORD piece = static_cast<DWORD>(std::min(kMaxPiece, text.size() - at));
    DWORD written = 0;
    if (!WriteFile(file, text.data() + at, piece, &written, nullptr) || written != piece) {
      return false;
    }
    at += piece;
  }
  return true;
}

}  // namespace

bool WriteConfigAtomic(WideView path, const std::string& text, std::uint32_t* errorOut) {
  const auto target = ToWinText(path);
  const auto temporary = ToWinText(Wide(path) + u".tmp");
  const auto fail = [&] {
    if (errorOut != nullptr) *errorOut = GetLastError();
    return false;
  };
  // Shared with nobody, so that a second writer fails instead of mixing its text into ours.
  const HANDLE file = CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return fail();
  const bool written = WriteAll(file, text);
  if (!written) fail();
  CloseHandle(file);
  if (written && MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) {
    return true;
  }
  if (written) fail();
  DeleteFileW(temporary.c_str());
  return false;
}

}  // namespace quillmarch
