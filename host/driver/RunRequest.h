// What the panel's page asks for when it starts a run, and the message in which it says so.
#pragma once

#include "foundation/Wide.h"
#include "run/RunParams.h"

struct RunRequest {
  Scope scope = Scope::kWholeDeck;
  Wide targetLang{};  // empty: the run's own default
  Wide sourceLang{};  // empty: the run's own default
  Wide targetFont{};  // empty: fonts stay as they are
  Wide accessToken{};
  bool viaPage = false;  // the page makes the requests; else they go out natively
};

Wide StartMessage(const RunRequest& request);
