// Who translates for the command: a service named by the user, or one of its own on loopback with
// an engine.
#pragma once

#include <memory>
#include <string>

#include "foundation/text/Wide.h"
#include "host/cli/Options.h"
#include "service/Service.h"

namespace quillmarch::host {

class Backend {
 public:
  // Settles the process's endpoint, so it is called once and before the first run. Null with a
  // sentence in `error` when there is no such engine, or none for the pair of languages.
  static std::unique_ptr<Backend> Make(const TranslateOptions& options, std::string& error);

  // What every run sends as its bearer token.
  const Wide& accessToken() const { return accessToken_; }

 private:
  std::unique_ptr<service::Service> service_;
  Wide accessToken_;
};

}  // namespace quillmarch::host
