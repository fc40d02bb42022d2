// What the panel's page asks for when it starts a run, and the message in which it says so.
#pragma once

#include "foundation/text/Wide.h"
#include "run/document/RunParams.h"

namespace quillmarch::host {

struct RunRequest {
  addin::Scope scope = addin::Scope::kWholeDeck;
  Wide targetLang{};  // empty: the run's own default
  Wide sourceLang{};  // empty: the run's own default
  Wide targetFont{};  // empty: fonts stay as they are
  Wide accessToken{};
  bool viaPage = false;  // the page makes the requests; else they go out natively
};

Wide StartMessage(const RunRequest& request);

}  // namespace quillmarch::host
