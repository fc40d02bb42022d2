// What a pane is given when it is made. All of it outlives every pane.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "foundation/seams/Desktop.h"
#include "foundation/seams/FontList.h"
#include "foundation/seams/HostThread.h"
#include "foundation/seams/InputState.h"
#include "foundation/seams/WebView.h"
#include "foundation/transport/Endpoint.h"
#include "pane/PanelTransport.h"
#include "run/document/RunRecord.h"

namespace quillmarch::addin {

class CPptPane;

// A window's client area in pixels.
struct ClientSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

struct PaneSurroundings {
  HostThread& thread;
  InputState& input;
  FontList& fonts;
  RunObserver observer;  // gets the record of each run's end; may be empty
  // Starts a browser that needs no loader and arrives through AttachWebView; may be empty.
  std::function<void(CPptPane&)> startWebView;
  // Creates and shows the pane's window under `parent`, for hosts that do not: default rectangle,
  // no title, kFallbackStyle; calls OnCreate before it returns. False when there is none; may be
  // empty.
  std::function<bool(CPptPane&, std::uintptr_t parent)> createWindow;
  std::uint32_t bridgeWaitMs = kBridgeWaitMs;  // how long the page may take over a request
  WebViewLoader* loader = nullptr;             // null: the browser comes through startWebView
  Desktop* desktop = nullptr;                  // goes with the loader
  // The client area of the pane's window; empty counts as no area.
  std::function<ClientSize(const CPptPane&)> clientSize = nullptr;
  // A reference to the object that the host knows the pane by; a run holds one. May be empty.
  std::function<std::shared_ptr<void>(CPptPane&)> holdObject = nullptr;
  Endpoint apiHost = DefaultEndpoint();  // where the panel's pages are
};

}  // namespace quillmarch::addin
