// What slides inherit: themes, masters and layouts, read once into plain records.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "host/deck/FrameProps.h"
#include "host/deck/ShapeTree.h"
#include "host/deck/text/CharProps.h"
#include "host/deck/text/ParagraphProps.h"
#include "host/deck/text/TextBody.h"

namespace quillmarch::host::deck {

struct ThemeStyles {
  ThemeColors colors;
  std::string majorLatin, majorEastAsian, majorComplex;
  std::string minorLatin, minorEastAsian, minorComplex;
};
ThemeStyles ParseTheme(const XmlNames& names, pugi::xml_node theme);

struct PlaceholderStyle {
  PlaceholderKey key;
  LevelProps levels;
  FrameProps frame;
  std::shared_ptr<const ParagraphLevels> paragraphs;  // null when they say nothing
  std::optional<ShapeBox> box;
};
// The placeholders among the shapes of a layout or master (`root` is p:sldLayout and the like).
std::vector<PlaceholderStyle> ParsePlaceholders(const XmlNames& names, pugi::xml_node root);

// A slide master or the notes master.
struct MasterStyles {
  std::vector<PlaceholderStyle> placeholders;
  LevelProps title, body, other;  // a notes master has its one style in all three
  std::shared_ptr<const ParagraphLevels> titleParagraphs, bodyParagraphs, otherParagraphs;
  ColorMap colorMap;
  ThemeStyles theme;
};
// The theme is the caller's to fill in.
MasterStyles ParseMaster(const XmlNames& names, pugi::xml_node root);

struct LayoutStyles {
  std::vector<PlaceholderStyle> placeholders;
  std::optional<ColorMap> colorMap;  // where it overrides the master's
  std::shared_ptr<const MasterStyles> master;
};
LayoutStyles ParseLayout(const XmlNames& names, pugi::xml_node root);
// The colour map that a slide or layout sets over its master's, if any.
std::optional<ColorMap> ParseColorMapOverride(const XmlNames& names, pugi::xml_node root);

// The layout's placeholder that a slide's one is based on, by index first, then type; null when
// there is none.
const PlaceholderStyle* MatchInLayout(const std::vector<PlaceholderStyle>& placeholders,
                                      const PlaceholderKey& key);
// The master's placeholder for a type.
const PlaceholderStyle* MatchInMaster(const std::vector<PlaceholderStyle>& placeholders,
                                      const PlaceholderKey& key);
// The master's list style that a placeholder type takes its text from.
const LevelProps& MasterLevels(const MasterStyles& master, const PlaceholderKey& key);
const std::shared_ptr<const ParagraphLevels>& MasterParagraphs(const MasterStyles& master,
                                                               const PlaceholderKey& key);
bool IsTitle(const std::string& placeholderType);

// EMU to points; the box of a transform. Nothing when offset or extent is missing.
std::optional<ShapeBox> BoxOf(const XmlNames& names, pugi::xml_node transform, const char* offset,
                              const char* extent);

}  // namespace quillmarch::host::deck
