#include "host/deck/Inheritance.h"

namespace quillmarch::host::deck {

bool IsTitle(const std::string& placeholderType) {
  return placeholderType == "title" || placeholderType == "ctrTitle";
}

namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
constexpr double kEmuPerPoint = 12700.0;

std::string Typeface(const XmlNames& names, pugi::xml_node fonts, const char* script) {
  return names.Child(fonts, kA, script).attribute("typeface").value();
}

// Types that have a placeholder of their own on the master; all others are based on its body.
bool IsFooter(const std::string& type) {
  return type == "dt" || type == "ftr" || type == "sldNum" || type == "hdr" || type == "sldImg";
}

std::string MasterType(const std::string& type) {
  if (IsTitle(type)) return "title";
  return IsFooter(type) ? type : "body";
}

}  // namespace

ThemeStyles ParseTheme(const XmlNames& names, pugi::xml_node theme) {
  ThemeStyles styles;
  const pugi::xml_node elements = names.Child(theme, kA, "themeElements");
  const pugi::xml_node scheme = names.Child(elements, kA, "fontScheme");
  const pugi::xml_node major = names.Child(scheme, kA, "majorFont");
  const pugi::xml_node minor = names.Child(scheme, kA, "minorFont");
  styles.colors = ParseThemeColors(names, names.Child(elements, kA, "clrScheme"));
  styles.majorLatin = Typeface(names, major, "latin");
  styles.majorEastAsian = Typeface(names, major, "ea");
  styles.majorComplex = Typeface(names, major, "cs");
  styles.minorLatin = Typeface(names, minor, "latin");
  styles.minorEastAsian = Typeface(names, minor, "ea");
  styles.minorComplex = Typeface(names, minor, "cs");
  return styles;
}

std::optional<ShapeBox> BoxOf(const XmlNames& names, pugi::xml_node transform, const char* offset,
                              const char* extent) {
  const pugi::xml_node off = names.Child(transform, kA, offset);
  const pugi::xml_node ext = names.Child(transform, kA, extent);
  if (!off || !ext) return std::nullopt;
  const auto points = [](pugi::xml_node node, const char* name) {
    return static_cast<double>(WholeAttribute(node, name, 0)) / kEmuPerPoint;
  };
  return ShapeBox{points(off, "x"), points(off, "y"), points(ext, "cx"), points(ext, "cy")};
}

std::vector<PlaceholderStyle> ParsePlaceholders(const XmlNames& names, pugi::xml_node root) {
  std::vector<PlaceholderStyle> found;
  const pugi::xml_node tree = names.Child(names.Child(root, kP, "cSld"), kP, "spTree");
  const ShapeTree shapes(names, tree);
  for (std::uint32_t i = 0; i < shapes.Count(); ++i) {
    const ShapeEntry& entry = shapes.At(i);
    const std::optional<PlaceholderKey> key = PlaceholderOf(names, entry.node);
    if (!key) continue;
    PlaceholderStyle style;
    style.key = *key;
    const pugi::xml_node text = TextBodyOf(names, entry.node);
    const pugi::xml_node list = names.Child(text, kA, "lstStyle");
    style.levels = ParseLevels(names, list);
    style.paragraphs = ParseParagraphLevels(names, list);
    style.frame = ParseFrameProps(names, names.Child(text, kA, "bodyPr"));
    style.box = BoxOf(names, ShapeTransform(names, entry.node, entry.kind), "off", "ext");
    found.push_back(std::move(style));
  }
  return found;
}

MasterStyles ParseMaster(const XmlNames& names, pugi::xml_node root) {
  MasterStyles master;
  master.placeholders = ParsePlaceholders(names, root);
  const pugi::xml_node styles = names.Child(root, kP, "txStyles");
  const auto read = [&](pugi::xml_node list, LevelProps& levels,
                        std::shared_ptr<const ParagraphLevels>& paragraphs) {
    levels = ParseLevels(names, list);
    paragraphs = ParseParagraphLevels(names, list);
  };
  read(names.Child(styles, kP, "titleStyle"), master.title, master.titleParagraphs);
  read(names.Child(styles, kP, "bodyStyle"), master.body, master.bodyParagraphs);
  read(names.Child(styles, kP, "otherStyle"), master.other, master.otherParagraphs);
  if (const pugi::xml_node notes = names.Child(root, kP, "notesStyle")) {
    read(notes, master.body, master.bodyParagraphs);
    master.title = master.other = master.body;
    master.titleParagraphs = master.otherParagraphs = master.bodyParagraphs;
  }
  if (const pugi::xml_node map = names.Child(root, kP, "clrMap")) {
    master.colorMap = ParseColorMap(map);
  }
  return master;
}

std::optional<ColorMap> ParseColorMapOverride(const XmlNames& names, pugi::xml_node root) {
  const pugi::xml_node map =
      names.Child(names.Child(root, kP, "clrMapOvr"), kA, "overrideClrMapping");
  if (!map) return std::nullopt;
  return ParseColorMap(map);
}

LayoutStyles ParseLayout(const XmlNames& names, pugi::xml_node root) {
  LayoutStyles layout;
  layout.placeholders = ParsePlaceholders(names, root);
  layout.colorMap = ParseColorMapOverride(names, root);
  return layout;
}

const PlaceholderStyle* MatchInLayout(const std::vector<PlaceholderStyle>& placeholders,
                                      const PlaceholderKey& key) {
  const PlaceholderStyle* byIndex = nullptr;
  const PlaceholderStyle* byType = nullptr;
  for (const PlaceholderStyle& candidate : placeholders) {
    const bool sameIndex = candidate.key.index == key.index;
    const bool sameType =
        candidate.key.type == key.type || (IsTitle(candidate.key.type) && IsTitle(key.type));
    if (sameIndex && sameType) return &candidate;
    if (sameIndex && key.index != 0 && byIndex == nullptr) byIndex = &candidate;
    if (sameType && byType == nullptr) byType = &candidate;
  }
  return byIndex != nullptr ? byIndex : byType;
}

const PlaceholderStyle* MatchInMaster(const std::vector<PlaceholderStyle>& placeholders,
                                      const PlaceholderKey& key) {
  const std::string wanted = MasterType(key.type);
  for (const PlaceholderStyle& candidate : placeholders) {
    if (MasterType(candidate.key.type) == wanted) return &candidate;
  }
  return nullptr;
}

const LevelProps& MasterLevels(const MasterStyles& master, const PlaceholderKey& key) {
  if (IsTitle(key.type)) return master.title;
  return IsFooter(key.type) ? master.other : master.body;
}

const std::shared_ptr<const ParagraphLevels>& MasterParagraphs(const MasterStyles& master,
                                                               const PlaceholderKey& key) {
  if (IsTitle(key.type)) return master.titleParagraphs;
  return IsFooter(key.type) ? master.otherParagraphs : master.bodyParagraphs;
}

}  // namespace quillmarch::host::deck
