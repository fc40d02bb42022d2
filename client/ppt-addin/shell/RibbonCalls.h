// The names and numbers by which hosts call the ribbon's handlers, and the texts of its controls.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

namespace ribbon {

inline constexpr DispId kTranslateFullDocClicked = 100;
inline constexpr DispId kTranslateCurrentSlideClicked = 101;
inline constexpr DispId kShowPaneClicked = 102;
inline constexpr DispId kGlossaryClicked = 103;
inline constexpr DispId kInstructionClicked = 104;
inline constexpr DispId kAccountClicked = 105;
inline constexpr DispId kSupportClicked = 106;
inline constexpr DispId kGetImage = 108;
inline constexpr DispId kTranslateSelectionClicked = 109;
inline constexpr DispId kPdfTranslateClicked = 110;
inline constexpr DispId kOnRibbonLoad = 130;
inline constexpr DispId kGetLabel = 131;
inline constexpr DispId kGetScreentip = 132;
inline constexpr DispId kSettingsClicked = 133;

}  // namespace ribbon

// One argument of an Invoke as it came.
struct RibbonArgument {
  std::uint16_t vt = 0;  // the VARTYPE, by-reference bit and all
  Variant value;         // empty where the type is none that Variant knows
};

// IDispatch::GetIDsOfNames. `typeLibrary` looks up what the table does not hold, and leaves the id
// at -1 where it finds nothing. Empty spans count as a missing argument.
ResultCode RibbonIdsOfNames(std::span<const Wide> names, std::span<DispId> ids,
                            const std::function<void(const Wide&, DispId&)>& typeLibrary);

// The first object among the first four arguments; null when there is none.
ObjectRef ControlOf(std::span<const RibbonArgument> args);

// The label of a control, or its tip, in the language of the display.
Wide RibbonText(const Wide& id, bool tip);

// Every imageMso="..." becomes getImage="GetImage".
Wide ReplaceImageMso(Wide xml);

}  // namespace quillmarch::addin
