#include "host/deck/chart/ChartRefresh.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "host/deck/chart/ChartData.h"
#include "host/deck/chart/ChartEdit.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kC = XmlNamespace::kChart;

bool HasLocal(pugi::xml_node node, const char* local) {
  return std::strcmp(LocalName(node.name()), local) == 0;
}

// Of Microsoft's extensions, whose namespace no table of ours lists.
pugi::xml_node ChildByLocal(pugi::xml_node parent, const char* local) {
  for (const pugi::xml_node child : parent.children()) {
    if (HasLocal(child, local)) return child;
  }
  return {};
}

// Numbers closer than that, as a share of their size, are one: sheets and caches round their last
// digits in different ways.
constexpr double kSameNumber = 1e-12;

struct Wanted {
  std::uint32_t index = 0;
  std::string text;  // UTF-8
};

bool SameNumber(const std::string& left, const std::string& right) {
  const double one = std::strtod(left.c_str(), nullptr);
  const double other = std::strtod(right.c_str(), nullptr);
  return std::fabs(one - other) <= kSameNumber * std::max(std::fabs(one), std::fabs(other));
}

class Refresher {
 public:
  Refresher(const XmlNames& names, std::string_view bytes, bool visibleOnly,
            const SheetReader& read)
      : names_(names), bytes_(bytes), visibleOnly_(visibleOnly), read_(read) {}

  void Walk(pugi::xml_node root);
  std::vector<Edit> TakeEdits() { return std::move(edits_); }

 private:
  bool Visit(pugi::xml_node node);
  void Texts(pugi::xml_node reference, const char* cache, const SheetBlock& block);
  void Numbers(pugi::xml_node reference, const SheetBlock& block);
  void Levels(pugi::xml_node reference, const SheetBlock& block);
  void LabelRange(pugi::xml_node range);
  bool PutTexts(pugi::xml_node level, const std::vector<Wanted>& wanted, std::size_t count,
                bool numbers);
  std::string PointsXml(const std::vector<Wanted>& wanted, pugi::xml_node old = {}) const;
  std::string CountXml(std::size_t count) const;
  std::string KeptXml(pugi::xml_node cache, const char* local) const;
  // A point of the chart's own, "<c:pt idx="0"><c:v>text</c:v></c:pt>".
  std::string Tag(const char* local) const { return prefix_ + local; }

  const XmlNames& names_;
  std::string_view bytes_;
  bool visibleOnly_;
  const SheetReader& read_;
  std::string prefix_;
  std::vector<Edit> edits_;
};

std::vector<Wanted> TextPoints(const SheetBlock& block) {
  std::vector<Wanted> wanted;
  for (std::uint32_t i = 0; i < block.points.size(); ++i) {
    const SheetPoint& point = block.points[i];
    if (point.present && !point.text.empty()) wanted.push_back({i, ToUtf8(point.text)});
  }
  return wanted;
}

// Points that `old` has too keep their formats.
std::string Refresher::PointsXml(const std::vector<Wanted>& wanted, pugi::xml_node old) const {
  std::map<std::int64_t, std::string> formats;
  for (const pugi::xml_node point : old.children()) {
    const pugi::xml_attribute format = point.attribute("formatCode");
    if (format) formats.emplace(WholeAttribute(point, "idx", -1), format.value());
  }
  std::string xml;
  for (const Wanted& point : wanted) {
    xml += "<" + Tag("pt") + " idx=\"" + std::to_string(point.index) + "\"";
    const auto format = formats.find(point.index);
    if (format != formats.end()) xml += " formatCode=\"" + EscapeAttribute(format->second) + "\"";
    xml +=
        "><" + Tag("v") + ">" + EscapeText(point.text) + "</" + Tag("v") + "></" + Tag("pt") + ">";
  }
  return xml;
}

std::string Refresher::CountXml(std::size_t count) const {
  return "<" + Tag("ptCount") + " val=\"" + std::to_string(count) + "\"/>";
}

std::string Refresher::KeptXml(pugi::xml_node cache, const char* local) const {
  return std::string(RawElement(bytes_, names_.Child(cache, kC, local)));
}

// True when the points of a cache or level are as wanted, or need other texts only, which are then
// put.
bool Refresher::PutTexts(pugi::xml_node level, const std::vector<Wanted>& wanted, std::size_t count,
                         bool numbers) {
  std::vector<std::pair<pugi::xml_node, const Wanted*>> changed;
  std::size_t next = 0;
  for (const pugi::xml_node child : level.children()) {
    if (names_.Is(child, kC, "ptCount") && count > 0 &&
        WholeAttribute(child, "val", -1) != static_cast<std::int64_t>(count)) {
      return false;
    }
    if (!names_.Is(child, kC, "pt")) continue;
    const pugi::xml_node value = names_.Child(child, kC, "v");
    const std::string old = ElementText(value);
    if (old.empty()) continue;
    if (next == wanted.size() || !value ||
        WholeAttribute(child, "idx", -1) != static_cast<std::int64_t>(wanted[next].index)) {
      return false;
    }
    const bool same = numbers ? SameNumber(old, wanted[next].text) : old == wanted[next].text;
    if (!same) changed.emplace_back(value, &wanted[next]);
    ++next;
  }
  if (next != wanted.size()) return false;
  for (const auto& [value, point] : changed) {
    edits_.push_back(ReplaceContent(bytes_, value, EscapeText(point->text)));
  }
  return true;
}

void Refresher::Texts(pugi::xml_node reference, const char* cacheName, const SheetBlock& block) {
  const std::vector<Wanted> wanted = TextPoints(block);
  const pugi::xml_node cache = ChildByLocal(reference, cacheName);
  if (cache && PutTexts(cache, wanted, block.points.size(), false)) return;
  const std::string inside =
      CountXml(block.points.size()) + PointsXml(wanted) + KeptXml(cache, "extLst");
  if (cache) {
    edits_.push_back(ReplaceContent(bytes_, cache, inside));
  } else {
    edits_.push_back(
        InsertElement(bytes_, reference, ChildByLocal(reference, "f"),
                      "<" + Tag(cacheName) + ">" + inside + "</" + Tag(cacheName) + ">"));
  }
}

void Refresher::Numbers(pugi::xml_node reference, const SheetBlock& block) {
  const pugi::xml_node holder = reference.parent();
  const bool category = names_.Is(holder, kC, "cat") || names_.Is(holder, kC, "xVal");
  std::vector<Wanted> wanted;
  for (std::uint32_t i = 0; i < block.points.size(); ++i) {
    const SheetPoint& point = block.points[i];
    if (!point.present) continue;
    if (!point.number && category && !point.text.empty()) {
      // Categories with words in them are texts, all of them.
      const std::string formula = KeptXml(reference, "f");
      const std::string cache = CountXml(block.points.size()) + PointsXml(TextPoints(block));
      edits_.push_back(ReplaceElement(bytes_, reference,
                                      "<" + Tag("strRef") + ">" + formula + "<" + Tag("strCache") +
                                          ">" + cache + "</" + Tag("strCache") + "></" +
                                          Tag("strRef") + ">"));
      return;
    }
    if (point.number) wanted.push_back({i, point.value});
  }
  const pugi::xml_node cache = names_.Child(reference, kC, "numCache");
  if (!cache || PutTexts(cache, wanted, block.points.size(), true)) return;
  edits_.push_back(ReplaceContent(bytes_, cache,
                                  KeptXml(cache, "formatCode") + CountXml(block.points.size()) +
                                      PointsXml(wanted, cache) + KeptXml(cache, "extLst")));
}

void Refresher::Levels(pugi::xml_node reference, const SheetBlock& block) {
  const pugi::xml_node cache = names_.Child(reference, kC, "multiLvlStrCache");
  const auto known =
      WholeAttribute(names_.Child(cache, kC, "ptCount"), "val", static_cast<int>(block.rows));
  // Levels lie side by side, or one below the other where the categories run to the right.
  const bool across = known != block.rows && known == block.columns;
  const std::uint32_t levels = across ? block.rows : block.columns;
  const std::uint32_t count = across ? block.columns : block.rows;
  std::vector<std::vector<Wanted>> wanted(levels);
  for (std::uint32_t level = 0; level < levels; ++level) {
    const std::uint32_t lane = levels - 1 - level;
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::size_t at =
          across ? std::size_t{lane} * block.columns + i : std::size_t{i} * block.columns + lane;
      const SheetPoint& point = block.points[at];
      if (point.present && !point.text.empty()) wanted[level].push_back({i, ToUtf8(point.text)});
    }
  }
  const std::size_t before = edits_.size();
  std::uint32_t level = 0;
  bool same = cache && known == count;
  for (const pugi::xml_node child : cache.children()) {
    if (!same || !names_.Is(child, kC, "lvl")) continue;
    same = level < levels && PutTexts(child, wanted[level], 0, false);
    ++level;
  }
  if (same && level == levels) return;
  edits_.resize(before);
  std::string inside = CountXml(count);
  for (const std::vector<Wanted>& points : wanted) {
    inside += "<" + Tag("lvl") + ">" + PointsXml(points) + "</" + Tag("lvl") + ">";
  }
  inside += KeptXml(cache, "extLst");
  if (cache) {
    edits_.push_back(ReplaceContent(bytes_, cache, inside));
  } else {
    edits_.push_back(InsertElement(
        bytes_, reference, names_.Child(reference, kC, "f"),
        "<" + Tag("multiLvlStrCache") + ">" + inside + "</" + Tag("multiLvlStrCache") + ">"));
  }
}

void Refresher::LabelRange(pugi::xml_node range) {
  const pugi::xml_node formula = ChildByLocal(range, "f");
  SheetBlock block;
  if (!ChildByLocal(range, "dlblRangeCache")) return;
  if (!read_(ToWide(ElementText(formula)), visibleOnly_, block)) return;
  Texts(range, "dlblRangeCache", block);
}

// Whether the element is a reference, inside of which there are no others to look for.
bool Refresher::Visit(pugi::xml_node node) {
  if (HasLocal(node, "datalabelsRange")) {
    LabelRange(node);
    return true;
  }
  const bool text = names_.Is(node, kC, "strRef");
  const bool number = names_.Is(node, kC, "numRef");
  const bool levels = names_.Is(node, kC, "multiLvlStrRef");
  if (!text && !number && !levels) return false;
  const pugi::xml_node formula = names_.Child(node, kC, "f");
  SheetBlock block;
  if (!formula || !read_(ToWide(ElementText(formula)), visibleOnly_, block)) return true;
  if (block.points.empty()) return true;
  if (text) Texts(node, "strCache", block);
  if (number) Numbers(node, block);
  if (levels) Levels(node, block);
  return true;
}

void Refresher::Walk(pugi::xml_node root) {
  prefix_ = PrefixWithColon(root.name());
  for (pugi::xml_node node = root; node;) {
    const bool whole = node.type() == pugi::node_element && Visit(node);
    if (!whole && node.first_child()) {
      node = node.first_child();
      continue;
    }
    while (node && node != root && !node.next_sibling()) node = node.parent();
    node = node == root ? pugi::xml_node() : node.next_sibling();
  }
}

}  // namespace

std::vector<Edit> RefreshEdits(const XmlNames& names, std::string_view bytes, pugi::xml_node root,
                               bool visibleOnly, const SheetReader& read) {
  Refresher refresher(names, bytes, visibleOnly, read);
  refresher.Walk(root);
  return refresher.TakeEdits();
}

Wide LabelFromCells(const XmlNames& names, const ChartSeries& series, std::uint32_t point) {
  for (const pugi::xml_node extension : names.Child(series.node, kC, "extLst").children()) {
    const pugi::xml_node cache =
        ChildByLocal(ChildByLocal(extension, "datalabelsRange"), "dlblRangeCache");
    for (const pugi::xml_node child : cache.children()) {
      if (names.Is(child, kC, "pt") && WholeAttribute(child, "idx", -1) == point) {
        return ToWide(ElementText(names.Child(child, kC, "v")));
      }
    }
  }
  return {};
}

}  // namespace quillmarch::host::deck
