#include "shell/windows/Module.h"

#include <exception>
#include <utility>

#include "foundation/seams/UserRegistry.h"
#include "foundation/system/KnownFolders.h"
#include "pane/windows/PaneControl.h"
#include "shell/Registration.h"
#include "shell/windows/ConnectObject.h"
#include "shell/windows/SystemRegistration.h"
#include "shell/windows/TypeLibrary.h"

namespace quillmarch::addin {

namespace {

HINSTANCE moduleHandle = nullptr;

// Never destroyed: at the process's end threads may still be busy with it.
CPptAddinModule& Module() {
  static CPptAddinModule& module = *std::make_unique<CPptAddinModule>(moduleHandle).release();
  return module;
}

using Creator = HRESULT (CPptAddinModule::*)(REFIID, void**);

struct ClassEntry {
  const CLSID& id;
  Creator create;
};

constexpr ClassEntry kClassTable[] = {{kConnectClass, &CPptAddinModule::CreateConnect},
                                      {kPaneClass, &CPptAddinModule::CreatePane}};

}  // namespace

// It stays when its last reference has gone, and is then as good as not there.
class ClassFactory final : public IClassFactory, public IModuleCounts {
 public:
  ClassFactory(CPptAddinModule& module, Creator create) : module_(module), create_(create) {}
  virtual ~ClassFactory() = default;
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
      *out = static_cast<IClassFactory*>(this);
    } else if (IsEqualIID(iid, __uuidof(IModuleCounts))) {
      *out = static_cast<IModuleCounts*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    ++Objects();
    return ++references_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    --Objects();
    return left;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return WithoutThrowing([&] { return (module_.*create_)(iid, out); });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    module_.LockServer(lock != FALSE);
    return S_OK;
  }
  LONG STDMETHODCALLTYPE LiveCountOf(LONG kind) override {
    if (kind < 0 || static_cast<std::size_t>(kind) >= kLiveKinds) return -1;
    return LiveCounts()[static_cast<std::size_t>(kind)];
  }

 private:
  static std::atomic<long>& Objects() {
    return LiveCounts()[static_cast<std::size_t>(LiveKind::kComObject)];
  }

  CPptAddinModule& module_;
  Creator create_;
  std::atomic<ULONG> references_{0};
};

CPptAddinModule::CPptAddinModule(HINSTANCE module) : resources_(module) {
  PaneControl::SetTypeInfoSource(&LoadOwnTypeInfo);
}

CPptAddinModule::~CPptAddinModule() = default;

HRESULT CPptAddinModule::GetClassObject(REFCLSID id, REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  for (std::size_t i = 0; i < kClasses; ++i) {
    if (!IsEqualCLSID(id, kClassTable[i].id)) continue;
    const std::lock_guard lock(mutex_);
    if (factories_[i] == nullptr) {
      factories_[i] = std::make_unique<ClassFactory>(*this, kClassTable[i].create);
    }
    return factories_[i]->QueryInterface(iid, out);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CPptAddinModule::CanUnloadNow() const {
  const bool idle =
      serverLocks_ == 0 && LiveCounts()[static_cast<std::size_t>(LiveKind::kComObject)] == 0;
  return idle ? S_OK : S_FALSE;
}

void CPptAddinModule::LockServer(bool lock) {
  serverLocks_ += lock ? 1 : -1;
}

std::shared_ptr<void> CPptAddinModule::HoldThread() {
  std::shared_ptr<void> hold = threadHold_.lock();
  if (hold != nullptr) return hold;
  if (!thread_.Open()) return nullptr;
  hold = std::shared_ptr<void>(&thread_,
                               [](void* thread) { static_cast<WindowThread*>(thread)->Close(); });
  threadHold_ = hold;
  return hold;
}

HRESULT CPptAddinModule::CreateConnect(REFIID iid, void** out) {
  std::shared_ptr<void> hold = HoldThread();
  if (hold == nullptr) return E_OUTOFMEMORY;
  const auto made = ComPtr<ConnectObject>::Adopt(
      std::make_unique<ConnectObject>(ShellSurroundings{thread_, desktop_, resources_},
                                      std::move(hold))
          .release());
  return made->QueryInterface(iid, out);
}

HRESULT CPptAddinModule::CreatePane(REFIID iid, void** out) {
  std::shared_ptr<void> hold = HoldThread();
  if (hold == nullptr) return E_OUTOFMEMORY;
  const ComPtr<PaneControl> made = PaneControl::Make(
      ControlSurroundings{thread_, input_, fonts_, browser_, desktop_}, std::move(hold));
  return made->QueryInterface(iid, out);
}

HRESULT CPptAddinModule::RegisterServer() {
  SystemRegistration system;
  return RegisterAddin({system, SystemUserRegistry(), resources_, ModulePath()});
}

HRESULT CPptAddinModule::UnregisterServer() {
  SystemRegistration system;
  return UnregisterAddin({system, SystemUserRegistry(), resources_, ModulePath()});
}

// ---- The exports
// ---------------------------------------------------------------------------------

extern "C" {

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) moduleHandle = module;
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** out) {
  return WithoutThrowing([&] { return Module().GetClassObject(id, iid, out); });
}

STDAPI DllCanUnloadNow() {
  return WithoutThrowing([] { return Module().CanUnloadNow(); });
}

STDAPI DllRegisterServer() {
  return WithoutThrowing([] { return Module().RegisterServer(); });
}

STDAPI DllUnregisterServer() {
  return WithoutThrowing([] { return Module().UnregisterServer(); });
}
}

}  // namespace quillmarch::addin
