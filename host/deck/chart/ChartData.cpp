#include "host/deck/chart/ChartData.h"

#include <algorithm>

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kC = XmlNamespace::kChart;

std::uint32_t Whole(pugi::xml_node node, const char* attribute) {
  const std::int64_t value = WholeAttribute(node, attribute, 0);
  return value > 0 && value <= kMostChartPoints ? static_cast<std::uint32_t>(value) : 0;
}

void ReadPoints(const XmlNames& names, pugi::xml_node cache, std::uint32_t level, ChartData& data) {
  for (const pugi::xml_node child : cache.children()) {
    if (names.Is(child, kC, "ptCount")) {
      data.count = std::max(data.count, Whole(child, "val"));
    } else if (names.Is(child, kC, "pt")) {
      const std::int64_t index = WholeAttribute(child, "idx", -1);
      if (index < 0 || index >= kMostChartPoints) continue;
      ChartDataPoint point;
      point.index = static_cast<std::uint32_t>(index);
      point.level = level;
      point.text = ToWide(ElementText(names.Child(child, kC, "v")));
      point.node = child;
      data.points.push_back(std::move(point));
    } else if (names.Is(child, kC, "lvl")) {
      ReadPoints(names, child, data.levels++, data);
    }
  }
}

}  // namespace

Wide ChartData::TextAt(std::uint32_t index) const {
  for (const ChartDataPoint& point : points) {
    if (point.index == index && point.level == 0) return point.text;
  }
  return {};
}

ChartData ReadChartData(const XmlNames& names, pugi::xml_node holder) {
  struct Form {
    const char* element;
    const char* cache;  // null for literals, which are their own
    ChartDataKind kind;
  };
  constexpr Form kForms[] = {
      {"strRef", "strCache", ChartDataKind::kText},
      {"numRef", "numCache", ChartDataKind::kNumber},
      {"multiLvlStrRef", "multiLvlStrCache", ChartDataKind::kLevels},
      {"strLit", nullptr, ChartDataKind::kText},
      {"numLit", nullptr, ChartDataKind::kNumber},
  };
  ChartData data;
  for (const Form& form : kForms) {
    data.node = names.Child(holder, kC, form.element);
    if (!data.node) continue;
    data.kind = form.kind;
    data.reference = form.cache != nullptr;
    const pugi::xml_node cache =
        data.reference ? names.Child(data.node, kC, form.cache) : data.node;
    if (data.reference) data.formula = ToWide(ElementText(names.Child(data.node, kC, "f")));
    ReadPoints(names, cache, 0, data);
    if (data.kind != ChartDataKind::kLevels) data.levels = 1;
    break;
  }
  return data;
}

}  // namespace quillmarch::host::deck
