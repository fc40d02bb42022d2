// The host's message loop.
#pragma once

#include <windows.h>

#include <functional>

namespace quillmarch::addin::winhost {

// Handles messages until `done`; false when that does not come about.
inline bool PumpUntil(const std::function<bool()>& done, DWORD ms = 60000) {
  const ULONGLONG end = GetTickCount64() + ms;
  while (!done()) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
      if (done()) return true;
    }
    if (GetTickCount64() > end) return false;
    MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  }
  return true;
}

inline void PumpFor(DWORD ms) {
  const ULONGLONG end = GetTickCount64() + ms;
  PumpUntil([end] { return GetTickCount64() >= end; }, ms + 1000);
}

}  // namespace quillmarch::addin::winhost
