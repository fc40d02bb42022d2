// The three things that the add-in tells the service about itself. Each event goes out on a thread
// of its own; nobody waits for it, looks at its answer or sends it again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "foundation/text/Wide.h"
#include "foundation/transport/HttpTransport.h"

namespace quillmarch {

// An event on its way; owned by its thread.
struct AnalyticsBeacon {
  Endpoint endpoint;
  std::string body;  // UTF-8
  Wide eventName;    // for the log
};

// Any thread, each of them; each returns before anything is sent.

// Null or empty `eventName` sends nothing; null `source` counts as "unknown".
void SendAnalyticsEvent(const char16_t* eventName, const char16_t* source);
// Only the first failure of the process. `stage` may be null.
void SendWebViewInitError(const char16_t* stage, std::uint32_t hresult);
// Pins the add-in's module, so that the thread's code cannot be unloaded under it. Throws what the
// making of a thread throws.
void PostBeacon(const Wide& eventName, const Wide& bodyJson);

// What a beacon's thread does: one POST to the events' address, and a log line when no text comes
// back. Blocking.
void DeliverBeacon(const AnalyticsBeacon& beacon);

// Threads of beacons that have not ended yet.
std::size_t BeaconsInTheAir();

// ---- For tests -------------------------------------------------------------------------------

// Gets each beacon in place of the thread; empty brings the thread back.
void SetBeaconSender(std::function<void(AnalyticsBeacon)> sender);
// As at the process's start.
void ForgetWebViewInitError();

}  // namespace quillmarch
