// What a range's characters looked like before its text was replaced, put back afterwards, and the
// target font's name. Host thread only, with the gate held; nothing here fails a unit.
#pragma once

#include <cstdint>

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

inline constexpr std::int32_t kMixed = -2;  // the host's word for mixed; here also: not read

struct FontSnapshot {
  bool valid = false;               // the range's Font could be read
  std::int32_t colorType = kMixed;  // 2 is a scheme colour
  std::int32_t rgb = 0;             // 0x00BBGGRR
  bool hasRgb = false;
  std::int32_t schemeColor = 0;
  bool hasSchemeColor = false;
  float tint = 0.0F;
  bool hasTint = false;
  float size = 0.0F;  // points
  bool hasSize = false;
  std::int32_t bold = kMixed;  // tri-state
  std::int32_t italic = kMixed;
};

// Fills the snapshot with the initial values first; a failed read leaves its field at that.
void TakeFontSnapshot(AutomationObject* range, FontSnapshot& snapshot);

// Puts back what differs; what was mixed stays as the host set it.
void RestoreFontSnapshot(AutomationObject* range, const FontSnapshot& snapshot);

// Puts the three font names of the range; an empty name puts nothing.
void ApplyTargetFontName(AutomationObject* range, const Wide& targetFont);

}  // namespace quillmarch::addin
