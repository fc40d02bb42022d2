// What a text frame's a:bodyPr says of its text area: wrap, autofit, insets, anchor, direction,
// turn, columns. What is not said is unset.
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>

#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

enum class AutofitKind : std::uint8_t { kNone, kShapeToText, kTextToShape };

// Shares in thousandths of a per cent, as the file stores what the last layout found.
inline constexpr std::int32_t kWholeShare = 100000;

struct Autofit {
  AutofitKind kind = AutofitKind::kNone;
  std::int32_t fontScale = kWholeShare;  // of kTextToShape, else kWholeShare
  std::int32_t lineSpacingReduction = 0;
  friend bool operator==(const Autofit&, const Autofit&) = default;

  // Shown size = nominal size x scale.
  double Scale() const { return static_cast<double>(fontScale) / kWholeShare; }
};

enum class FrameAnchor : std::uint8_t { kTop, kMiddle, kBottom };
enum class TextDirection : std::uint8_t {
  kHorizontal,
  kClockwise,
  kCounterclockwise,
  kEastAsian,
  kMongolian,
  kStacked
};

struct FrameProps {
  std::optional<bool> wrap;
  std::optional<Autofit> autofit;
  std::optional<std::int64_t> insetLeft, insetTop, insetRight, insetBottom;  // EMU
  std::optional<FrameAnchor> anchor;
  std::optional<bool> anchorCenter;
  std::optional<TextDirection> direction;
  std::optional<std::int64_t> turn;  // clockwise within the shape, in 60000ths of a degree
  std::optional<std::int32_t> columns;
  std::optional<std::int64_t> columnSpacing;  // EMU
  friend bool operator==(const FrameProps&, const FrameProps&) = default;
};

// `node` is an a:bodyPr; null gives all unset.
FrameProps ParseFrameProps(const XmlNames& names, pugi::xml_node node);
// `node` is an a:tcPr: a cell wraps, fits nothing and names its insets in its own way.
FrameProps ParseCellFrame(pugi::xml_node node);
// Takes from `from` whatever `into` leaves unset.
void Inherit(FrameProps& into, const FrameProps& from);
// The defaults when nothing is set anywhere; all set.
FrameProps DefaultFrame();

}  // namespace quillmarch::host::deck
