// The interfaces by which a host of the Office family talks to an add-in, as its type library
// publishes them. Methods are in the library's order. Windows only.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace quillmarch::addin {

// What the host finds out about first, under the name _IDTExtensibility2.
struct IDTExtensibility2 : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, int connectMode,
                                                 IDispatch* addInInst, SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnDisconnection(int mode, SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) = 0;
};

struct IRibbonExtensibility : IDispatch {
  // The host frees the text.
  virtual HRESULT STDMETHODCALLTYPE GetCustomUI(BSTR ribbonId, BSTR* xml) = 0;
};

// The factory is an ICTPFactory.
struct ICustomTaskPaneConsumer : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE CTPFactoryAvailable(IDispatch* factory) = 0;
};

}  // namespace quillmarch::addin

// The compiler looks these up in the global namespace.
__CRT_UUID_DECL(quillmarch::addin::IDTExtensibility2, 0xB65AD801, 0xABAF, 0x11D0, 0xBB, 0x8B, 0x00,
                0xA0, 0xC9, 0x0F, 0x27, 0x44)
__CRT_UUID_DECL(quillmarch::addin::IRibbonExtensibility, 0x000C0396, 0x0000, 0x0000, 0xC0, 0x00,
                0x00, 0x00, 0x00, 0x00, 0x00, 0x46)
__CRT_UUID_DECL(quillmarch::addin::ICustomTaskPaneConsumer, 0x000C033E, 0x0000, 0x0000, 0xC0, 0x00,
                0x00, 0x00, 0x00, 0x00, 0x00, 0x46)
