// The module as a server of classes: what its four exports do. Windows only; any thread, except
// that objects are made on the host's thread.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>

#include "foundation/seams/SystemDesktop.h"
#include "foundation/seams/SystemInput.h"
#include "foundation/seams/WindowThread.h"
#include "pane/windows/GdiFontList.h"
#include "pane/windows/InstalledBrowser.h"
#include "shell/windows/SystemResources.h"

namespace quillmarch::addin {

// What the module holds right now, by LiveKind; a class factory answers to it. For tests, and to
// find out why a host does not unload the module.
struct IModuleCounts : IUnknown {
  virtual LONG STDMETHODCALLTYPE LiveCountOf(LONG kind) = 0;
};

class ClassFactory;

class CPptAddinModule {
 public:
  explicit CPptAddinModule(HINSTANCE module);
  ~CPptAddinModule();
  CPptAddinModule(const CPptAddinModule&) = delete;
  CPptAddinModule& operator=(const CPptAddinModule&) = delete;

  HRESULT GetClassObject(REFCLSID id, REFIID iid, void** out);
  HRESULT CanUnloadNow() const;
  HRESULT RegisterServer();
  HRESULT UnregisterServer();

  HRESULT CreateConnect(REFIID iid, void** out);
  HRESULT CreatePane(REFIID iid, void** out);
  void LockServer(bool lock);

 private:
  static constexpr std::size_t kClasses = 2;

  // The host thread's loop, open as long as any object holds this.
  std::shared_ptr<void> HoldThread();

  std::mutex mutex_;
  std::array<std::unique_ptr<ClassFactory>, kClasses> factories_;  // guarded; each is made once
  std::atomic<long> serverLocks_{0};
  WindowThread thread_;
  std::weak_ptr<void> threadHold_;
  SystemInput input_;
  GdiFontList fonts_;
  InstalledBrowser browser_;
  SystemDesktop desktop_;
  SystemResources resources_;
};

}  // namespace quillmarch::addin

// The compiler looks these up in the global namespace.
__CRT_UUID_DECL(quillmarch::addin::IModuleCounts, 0x7D1E4C52, 0x93B6, 0x4A0F, 0x8C, 0x27, 0x51,
                0xE0, 0xB9, 0x64, 0xD3, 0x1A)
