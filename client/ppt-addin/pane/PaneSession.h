// What the page's messages leave with a pane: the token of the signed-in user, the style of
// translations, and what the last start message said about terminology and transport. Host thread
// only.
#pragma once

#include <vector>

#include "foundation/settings/TargetStyle.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// The token of the page that signed in last, for panes made later.
Wide& ProcessAccessToken();

class PaneSession {
 public:
  // Empty while nobody is signed in. Setting it sets the process's token too.
  const Wide& accessToken() const { return accessToken_; }
  void SetAccessToken(const Wide& token);

  const TargetStyle& targetStyle() const { return targetStyle_; }
  void SetTargetStyle(const Wide& message);

  // Takes a token, the ids and the transport out of a start message. The ids are replaced even by
  // empty ones; a token and the transport only by what the message names.
  void ReadStart(const Wide& message);
  const std::vector<Wide>& glossaryIds() const { return glossaryIds_; }
  const Wide& globalInstructionId() const { return globalInstructionId_; }
  // Whether requests go through the page or by native HTTP.
  bool nativeTranslateViaJs() const { return nativeTranslateViaJs_; }

 private:
  Wide accessToken_ = ProcessAccessToken();
  TargetStyle targetStyle_;
  std::vector<Wide> glossaryIds_;
  Wide globalInstructionId_;
  bool nativeTranslateViaJs_ = true;
};

}  // namespace quillmarch::addin
