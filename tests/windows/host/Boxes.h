// The message boxes of this process: seen, noted and closed by a thread, as the host thread waits
// for them meanwhile.
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillmarch::addin::winhost {

struct Box {
  std::wstring title;
  std::wstring text;
};

class Boxes {
 public:
  Boxes() : thread_([this] { Watch(); }) {}
  ~Boxes() {
    ends_ = true;
    thread_.join();
  }
  Boxes(const Boxes&) = delete;
  Boxes& operator=(const Boxes&) = delete;

  std::vector<Box> seen() {
    const std::lock_guard lock(mutex_);
    return seen_;
  }

 private:
  static std::wstring TextOf(HWND window) {
    std::wstring text(4096, L'\0');
    text.resize(static_cast<std::size_t>(
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
  }

  void Watch() {
    constexpr int kTextId = 0xFFFF;
    constexpr wchar_t kDialogClass[] = L"#32770";
    while (!ends_) {
      Sleep(10);
      HWND found = nullptr;
      while ((found = FindWindowExW(nullptr, found, kDialogClass, nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(found, &process);
        const HWND label = GetDlgItem(found, kTextId);
        if (process != GetCurrentProcessId() || label == nullptr) continue;
        const Box box = {TextOf(found), TextOf(label)};
        if (box.text.empty()) continue;  // not laid out yet
        {
          const std::lock_guard lock(mutex_);
          seen_.push_back(box);
        }
        // Posted, as a click is: the dialog's own loop loses the message that it holds in its hands
        // when a sent one ends it.
        PostMessageW(found, WM_COMMAND, IDOK, 0);
        while (!ends_ && IsWindow(found) != FALSE) Sleep(5);
        break;
      }
    }
  }

  std::mutex mutex_;
  std::vector<Box> seen_;
  std::atomic<bool> ends_{false};
  std::thread thread_;
};

}  // namespace quillmarch::addin::winhost
