#include "host/deck/text/ParagraphProps.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr double kEmuPerPoint = 12700.0;
constexpr double kHundredths = 100.0;
constexpr double kWhole = 100000.0;
constexpr std::int64_t kAbsent = std::numeric_limits<std::int64_t>::min();
// The range that the file format gives lengths on a slide.
constexpr std::int64_t kMostEmu = 51206400;
constexpr std::int64_t kMostHundredths = 400000;
constexpr std::int64_t kMostShare = 13200000;

std::optional<double> Scaled(std::int64_t value, std::int64_t most, double unit) {
  if (value == kAbsent || value > most || value < -most) return std::nullopt;
  return static_cast<double>(value) / unit;
}

std::optional<double> Emu(pugi::xml_node node, const char* name) {
  return Scaled(WholeAttribute(node, name, kAbsent), kMostEmu, kEmuPerPoint);
}

std::optional<bool> Flag(pugi::xml_node node, const char* name) {
  const int value = FlagAttribute(node, name);
  if (value < 0) return std::nullopt;
  return value == 1;
}

// What an element with a share or points for its child says.
std::optional<TextSpacing> SpacingOf(const XmlNames& names, pugi::xml_node node, const char* share,
                                     const char* points) {
  if (const pugi::xml_node child = names.Child(node, kA, share)) {
    const auto value = Scaled(PercentAttribute(child, "val", kAbsent), kMostShare, kWhole);
    if (value && *value >= 0) return TextSpacing{false, *value};
  } else if (const pugi::xml_node exact = names.Child(node, kA, points)) {
    const auto value = Scaled(WholeAttribute(exact, "val", kAbsent), kMostHundredths, kHundredths);
    if (value && *value >= 0) return TextSpacing{true, *value};
  }
  return std::nullopt;
}

std::vector<TabMark> TabsOf(const XmlNames& names, pugi::xml_node list) {
  std::vector<TabMark> tabs;
  for (const pugi::xml_node node : list.children()) {
    if (node.type() != pugi::node_element || !names.Is(node, kA, "tab")) continue;
    const std::optional<double> position = Emu(node, "pos");
    if (!position) continue;
    TabMark tab;
    tab.position = *position;
    const std::string_view side = node.attribute("algn").value();
    if (side == "ctr") tab.side = TabMark::Side::kCenter;
    if (side == "r") tab.side = TabMark::Side::kRight;
    if (side == "dec") tab.side = TabMark::Side::kDecimal;
    tabs.push_back(tab);
  }
  std::stable_sort(tabs.begin(), tabs.end(), [](const TabMark& left, const TabMark& right) {
    return left.position < right.position;
  });
  return tabs;
}

void ReadBullet(const XmlNames& names, pugi::xml_node child, std::string_view local,
                ParagraphProps& props) {
  BulletMark mark;
  if (local == "buNone") {
    props.bullet = mark;
  } else if (local == "buChar") {
    mark.kind = BulletMark::Kind::kCharacter;
    mark.text = child.attribute("char").value();
    props.bullet = mark;
  } else if (local == "buAutoNum") {
    mark.kind = BulletMark::Kind::kNumber;
    mark.text = child.attribute("type").value();
    mark.startAt = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(WholeAttribute(child, "startAt", 1), 1, 32767));
    props.bullet = mark;
  } else if (local == "buBlip") {
    mark.kind = BulletMark::Kind::kPicture;
    props.bullet = mark;
  } else if (local == "buFontTx") {
    props.bulletFont = std::string();
  } else if (local == "buFont") {
    props.bulletFont = std::string(child.attribute("typeface").value());
  } else if (local == "buSzTx") {
    props.bulletSize = TextSpacing{false, 1.0};
  } else if (local == "buSzPct") {
    const auto share = Scaled(PercentAttribute(child, "val", kAbsent), kMostShare, kWhole);
    if (share && *share > 0) props.bulletSize = TextSpacing{false, *share};
  } else if (local == "buSzPts") {
    const auto points = Scaled(WholeAttribute(child, "val", kAbsent), kMostHundredths, kHundredths);
    if (points && *points > 0) props.bulletSize = TextSpacing{true, *points};
  } else if (local == "tabLst") {
    props.tabs = TabsOf(names, child);
  }
}

template <typename T>
void Take(std::optional<T>& into, const std::optional<T>& from) {
  if (!into) into = from;
}

}  // namespace

TextExtras ParseTextExtras(const XmlNames& names, pugi::xml_node node) {
  TextExtras extras;
  if (!node) return extras;
  extras.spacing = Scaled(WholeAttribute(node, "spc", kAbsent), kMostHundredths, kHundredths);
  extras.baseline = Scaled(PercentAttribute(node, "baseline", kAbsent), kMostShare, kWhole);
  extras.kernFrom = Scaled(WholeAttribute(node, "kern", kAbsent), kMostHundredths, kHundredths);
  const std::string_view caps = node.attribute("cap").value();
  if (caps == "none") extras.caps = TextExtras::Caps::kNone;
  if (caps == "small") extras.caps = TextExtras::Caps::kSmall;
  if (caps == "all") extras.caps = TextExtras::Caps::kAll;
  extras.language = node.attribute("lang").value();
  if (node.first_child()) {
    extras.symbol = names.Child(node, kA, "sym").attribute("typeface").value();
  }
  return extras;
}

ParagraphProps ParseParagraphProps(const XmlNames& names, pugi::xml_node node) {
  ParagraphProps props;
  if (!node) return props;
  using Side = ParagraphProps::Side;
  const std::string_view side = node.attribute("algn").value();
  if (side == "l") props.side = Side::kLeft;
  if (side == "ctr") props.side = Side::kCenter;
  if (side == "r") props.side = Side::kRight;
  if (side == "just" || side == "justLow" || side == "dist" || side == "thaiDist") {
    props.side = Side::kJustify;
  }
  props.rightToLeft = Flag(node, "rtl");
  props.hangingPunctuation = Flag(node, "hangingPunct");
  props.marginLeft = Emu(node, "marL");
  props.marginRight = Emu(node, "marR");
  props.indent = Emu(node, "indent");
  props.defaultTab = Emu(node, "defTabSz");
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    const std::string_view local = LocalName(child.name());
    if (local == "lnSpc") props.lineSpacing = SpacingOf(names, child, "spcPct", "spcPts");
    if (local == "spcBef") props.before = SpacingOf(names, child, "spcPct", "spcPts");
    if (local == "spcAft") props.after = SpacingOf(names, child, "spcPct", "spcPts");
    if (local == "defRPr") props.text = ParseTextExtras(names, child);
    ReadBullet(names, child, local, props);
  }
  return props;
}

std::shared_ptr<const ParagraphLevels> ParseParagraphLevels(const XmlNames& names,
                                                            pugi::xml_node node) {
  if (!node.first_child()) return nullptr;
  auto levels = std::make_shared<ParagraphLevels>();
  ParagraphProps all;
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    const std::string_view local = LocalName(child.name());
    if (local == "defPPr") all = ParseParagraphProps(names, child);
    if (local.size() == 7 && local.starts_with("lvl") && local.ends_with("pPr") &&
        local[3] >= '1' && local[3] <= '9') {
      (*levels)[static_cast<std::size_t>(local[3] - '1')] = ParseParagraphProps(names, child);
    }
  }
  for (ParagraphProps& level : *levels) Inherit(level, all);
  return levels;
}

void Inherit(TextExtras& into, const TextExtras& from) {
  Take(into.spacing, from.spacing);
  Take(into.baseline, from.baseline);
  Take(into.caps, from.caps);
  Take(into.kernFrom, from.kernFrom);
  if (into.language.empty()) into.language = from.language;
  if (into.symbol.empty()) into.symbol = from.symbol;
}

void Inherit(ParagraphProps& into, const ParagraphProps& from) {
  Take(into.side, from.side);
  Take(into.rightToLeft, from.rightToLeft);
  Take(into.hangingPunctuation, from.hangingPunctuation);
  Take(into.marginLeft, from.marginLeft);
  Take(into.marginRight, from.marginRight);
  Take(into.indent, from.indent);
  Take(into.defaultTab, from.defaultTab);
  Take(into.lineSpacing, from.lineSpacing);
  Take(into.before, from.before);
  Take(into.after, from.after);
  Take(into.bullet, from.bullet);
  Take(into.bulletFont, from.bulletFont);
  Take(into.bulletSize, from.bulletSize);
  Take(into.tabs, from.tabs);
  Inherit(into.text, from.text);
}

void Inherit(ParagraphLevels& into, const std::shared_ptr<const ParagraphLevels>& from) {
  if (from == nullptr) return;
  for (std::size_t level = 0; level < kLevels; ++level) Inherit(into[level], (*from)[level]);
}

}  // namespace quillmarch::host::deck
