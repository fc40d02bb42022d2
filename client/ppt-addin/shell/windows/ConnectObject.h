// The connection as the host's object: one object with four dual interfaces, each of which answers
// its own ids through its own Invoke, and the ribbon's besides. What the host asks for as plain
// IDispatch is the one that knows the ribbon's handlers. Windows only; only on the host's thread.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <atomic>

#include "foundation/automation/ComClass.h"
#include "shell/CConnect.h"
#include "shell/windows/Office.h"

namespace quillmarch::addin {

// In the order of the type library.
struct IRibbonCallback : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE TranslateFullDocClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE TranslateCurrentSlideClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE ShowPaneClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE GlossaryClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE InstructionClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE AccountClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE SupportClicked(IDispatch* control) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetImage(IDispatch* control, IDispatch** image) = 0;
  virtual HRESULT STDMETHODCALLTYPE TranslateSelectionClicked(IDispatch* control) = 0;
};

inline constexpr CLSID kConnectClass = {
    0x5B9C1E43, 0xAF66, 0x4F7D, {0xBC, 0x38, 0x94, 0xE7, 0xFA, 0x05, 0x12, 0xC3}};

class ConnectObject;

// What all four interfaces share. An id or a name of an interface's own comes first.
template <typename Interface>
class ConnectFace : public Interface {
 public:
  explicit ConnectFace(ConnectObject& owner) : owner_(owner) {}
  ConnectFace(const ConnectFace&) = delete;
  ConnectFace& operator=(const ConnectFace&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID locale, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception,
                                   UINT* badArgument) override;

 protected:
  ~ConnectFace() = default;
  ConnectObject& owner() const { return owner_; }
  CConnect& connect() const;
  // The id of a name of the interface's own; DISPID_UNKNOWN for every other.
  virtual DISPID OwnId(const wchar_t*) const { return DISPID_UNKNOWN; }
  // False for an id that is not the interface's own.
  virtual bool InvokeOwn(DISPID, DISPPARAMS&, VARIANT*, HRESULT&) { return false; }

 private:
  ConnectObject& owner_;
};

class ExtensibilityFace final : public ConnectFace<IDTExtensibility2> {
 public:
  using ConnectFace::ConnectFace;
  HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, int connectMode,
                                         IDispatch* addInInst, SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnDisconnection(int mode, SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) override;

 private:
  DISPID OwnId(const wchar_t* name) const override;
  bool InvokeOwn(DISPID id, DISPPARAMS& params, VARIANT* result, HRESULT& code) override;
};

class RibbonXmlFace final : public ConnectFace<IRibbonExtensibility> {
 public:
  using ConnectFace::ConnectFace;
  HRESULT STDMETHODCALLTYPE GetCustomUI(BSTR ribbonId, BSTR* xml) override;

 private:
  DISPID OwnId(const wchar_t* name) const override;
  bool InvokeOwn(DISPID id, DISPPARAMS& params, VARIANT* result, HRESULT& code) override;
};

class ConsumerFace final : public ConnectFace<ICustomTaskPaneConsumer> {
 public:
  using ConnectFace::ConnectFace;
  HRESULT STDMETHODCALLTYPE CTPFactoryAvailable(IDispatch* factory) override;

 private:
  DISPID OwnId(const wchar_t* name) const override;
  bool InvokeOwn(DISPID id, DISPPARAMS& params, VARIANT* result, HRESULT& code) override;
};

class CallbackFace final : public ConnectFace<IRibbonCallback> {
 public:
  using ConnectFace::ConnectFace;
  HRESULT STDMETHODCALLTYPE TranslateFullDocClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE TranslateCurrentSlideClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE ShowPaneClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE GlossaryClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE InstructionClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE AccountClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE SupportClicked(IDispatch* control) override;
  HRESULT STDMETHODCALLTYPE GetImage(IDispatch* control, IDispatch** image) override;
  HRESULT STDMETHODCALLTYPE TranslateSelectionClicked(IDispatch* control) override;
};

class ConnectObject final {
 public:
  // Made with one reference, the maker's. `hold` is released last.
  ConnectObject(const ShellSurroundings& surroundings, std::shared_ptr<void> hold)
      : hold_(std::move(hold)), connect_(surroundings) {}
  ConnectObject(const ConnectObject&) = delete;
  ConnectObject& operator=(const ConnectObject&) = delete;

  HRESULT QueryInterface(REFIID iid, void** out);
  ULONG AddRef() { return ++references_; }
  ULONG Release();

  CConnect& connect() { return connect_; }
  // As the type library describes them.
  IRibbonCallback* callbacks() { return &callbacks_; }

 private:
  std::atomic<ULONG> references_{1};
  LiveCount<LiveKind::kComObject> live_;
  std::shared_ptr<void> hold_;
  CConnect connect_;
  ExtensibilityFace extensibility_{*this};
  RibbonXmlFace ribbonXml_{*this};
  CallbackFace callbacks_{*this};
  ConsumerFace consumer_{*this};
};

}  // namespace quillmarch::addin

// The compiler looks these up in the global namespace.
__CRT_UUID_DECL(quillmarch::addin::IRibbonCallback, 0x4A8B0D32, 0x9F55, 0x4E6C, 0xAB, 0x27, 0x83,
                0xD6, 0xE9, 0xF4, 0x01, 0xB2)
