// What a run is started with.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "foundation/automation/WindowContext.h"
#include "foundation/settings/TargetStyle.h"
#include "foundation/text/Wide.h"
#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

enum class Scope : std::int32_t { kWholeDeck = 0, kCurrentSlide = 1, kSelection = 2 };

// What the run gets from the resolve of terminology; false means failure with code and message.
using ResolveTerminologyHook =
    std::function<bool(const std::vector<Wide>& texts, Wide& outInstruction,
                       std::vector<GlossaryEntry>& outGlossary, Wide& outCode, Wide& outMessage)>;

struct RunParams {
  Scope scope = Scope::kWholeDeck;
  bool full = true;  // true exactly when scope is the whole deck; picks the paced tick
  Wide targetLang = u"en";
  Wide sourceLang = u"auto";
  Wide targetFont;
  bool useTargetFontSize = false;
  bool bilingual = false;
  Wide accessToken;
  Wide clientTraceId;
  Wide usageKind = u"translate_full";
  std::uint64_t runId = 0;
  TargetStyle targetStyle;
  TranslateHook translateViaPage;
  ResolveTerminologyHook resolveTerminology;
  WindowContext windowContext;
  TranslateConfig** configSlot = nullptr;
  const void* owner = nullptr;
};

}  // namespace quillmarch::addin
