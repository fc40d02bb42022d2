#include "foundation/seams/SystemDesktop.h"

#include <windows.h>

#include <shellapi.h>

#include <cstring>

#include "foundation/system/WinText.h"

namespace quillmarch {

namespace {

// A block of memory of the kind that the clipboard takes, with the text and its terminator.
HGLOBAL TextBlock(const Wide& text) {
  const std::size_t bytes = (text.size() + 1) * sizeof(char16_t);
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (block == nullptr) return nullptr;
  void* const at = GlobalLock(block);
  if (at == nullptr) {
    GlobalFree(block);
    return nullptr;
  }
  std::memcpy(at, text.c_str(), bytes);
  GlobalUnlock(block);
  return block;
}

}  // namespace

void SystemDesktop::ShowMessage(std::uintptr_t owner, const Wide& text, const Wide& title,
                                std::uint32_t style) {
  MessageBoxW(reinterpret_cast<HWND>(owner), ToWinText(text).c_str(), ToWinText(title).c_str(),
              style);
}

void SystemDesktop::PutClipboardText(std::uintptr_t owner, const Wide& text) {
  if (OpenClipboard(reinterpret_cast<HWND>(owner)) == FALSE) return;
  if (EmptyClipboard() != FALSE) {
    const HGLOBAL block = TextBlock(text);
    // The clipboard owns what it took.
    if (block != nullptr && SetClipboardData(CF_UNICODETEXT, block) == nullptr) GlobalFree(block);
  }
  CloseClipboard();
}

std::intptr_t SystemDesktop::OpenInBrowser(const Wide& url) {
  return reinterpret_cast<std::intptr_t>(
      ShellExecuteW(nullptr, L"open", ToWinText(url).c_str(), nullptr, nullptr, SW_SHOWNORMAL));
}

}  // namespace quillmarch
