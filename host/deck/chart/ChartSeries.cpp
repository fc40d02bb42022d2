#include "host/deck/chart/ChartSeries.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kC = XmlNamespace::kChart;
// Labels beyond these are of no use to anybody, and each takes memory.
constexpr std::uint32_t kMostLabels = 65536;

pugi::xml_node FirstOf(const XmlNames& names, pugi::xml_node parent, const char* one,
                       const char* other) {
  const pugi::xml_node found = names.Child(parent, kC, one);
  return found ? found : names.Child(parent, kC, other);
}

// An element without the attribute is true.
bool Flag(const XmlNames& names, pugi::xml_node parent, const char* local, bool otherwise) {
  const pugi::xml_node node = names.Child(parent, kC, local);
  if (!node) return otherwise;
  return FlagAttribute(node, "val") != 0;
}

LabelFlags ReadFlags(const XmlNames& names, pugi::xml_node labels, const LabelFlags& otherwise) {
  LabelFlags flags;
  flags.value = Flag(names, labels, "showVal", otherwise.value);
  flags.percentage = Flag(names, labels, "showPercent", otherwise.percentage);
  flags.categoryName = Flag(names, labels, "showCatName", otherwise.categoryName);
  flags.seriesName = Flag(names, labels, "showSerName", otherwise.seriesName);
  flags.bubbleSize = Flag(names, labels, "showBubbleSize", otherwise.bubbleSize);
  return flags;
}

Wide Quoted(const Wide& text) {
  Wide quoted = u"\"";
  for (const char16_t unit : text) {
    if (unit == u'"') quoted += u'"';
    quoted += unit;
  }
  return quoted + u"\"";
}

// The place of data in a series' formula.
Wide FormulaPiece(const ChartData& data) {
  if (data.reference) return data.formula;
  if (data.kind == ChartDataKind::kNone) return {};
  Wide list = u"{";
  for (std::uint32_t i = 0; i < data.points.size(); ++i) {
    if (i > 0) list += u',';
    const Wide& text = data.points[i].text;
    list += data.kind == ChartDataKind::kNumber ? text : Quoted(text);
  }
  return list + u"}";
}

}  // namespace

SeriesName ReadSeriesName(const XmlNames& names, const ChartSeries& series) {
  SeriesName name;
  const pugi::xml_node holder = names.Child(series.node, kC, "tx");
  if (!holder) return name;
  const ChartData data = ReadChartData(names, holder);
  name.found = true;
  name.reference = data.reference;
  name.formula = data.formula;
  if (!data.reference) {
    name.text = ToWide(ElementText(names.Child(holder, kC, "v")));
    return name;
  }
  // A name may come from several cells.
  for (const ChartDataPoint& point : data.points) {
    if (!name.text.empty() && !point.text.empty()) name.text += u' ';
    name.text += point.text;
  }
  return name;
}

ChartData ReadCategories(const XmlNames& names, const ChartSeries& series) {
  return ReadChartData(names, FirstOf(names, series.node, "cat", "xVal"));
}

ChartData ReadValues(const XmlNames& names, const ChartSeries& series) {
  return ReadChartData(names, FirstOf(names, series.node, "val", "yVal"));
}

ChartData ReadBubbleSizes(const XmlNames& names, const ChartSeries& series) {
  return ReadChartData(names, names.Child(series.node, kC, "bubbleSize"));
}

Wide SeriesFormula(const XmlNames& names, const ChartSeries& series) {
  const SeriesName name = ReadSeriesName(names, series);
  Wide formula = u"=SERIES(";
  if (name.found) formula += name.reference ? name.formula : Quoted(name.text);
  formula += u"," + FormulaPiece(ReadCategories(names, series));
  formula += u"," + FormulaPiece(ReadValues(names, series));
  formula += u"," + Decimal(series.order + 1);
  const ChartData sizes = ReadBubbleSizes(names, series);
  if (sizes.kind != ChartDataKind::kNone) formula += u"," + FormulaPiece(sizes);
  return formula + u")";
}

std::vector<SeriesLabel> ReadLabels(const XmlNames& names, const ChartSeries& series) {
  std::vector<SeriesLabel> labels;
  pugi::xml_node own = names.Child(series.node, kC, "dLbls");
  if (!own) own = names.Child(series.chart, kC, "dLbls");
  if (!own || Flag(names, own, "delete", false)) return labels;
  const LabelFlags shared = ReadFlags(names, own, {});
  std::map<std::uint32_t, pugi::xml_node> single;
  for (const pugi::xml_node child : own.children()) {
    if (!names.Is(child, kC, "dLbl")) continue;
    const std::int64_t point = WholeAttribute(names.Child(child, kC, "idx"), "val", -1);
    if (point >= 0 && point < kMostLabels) single.emplace(static_cast<std::uint32_t>(point), child);
  }
  std::uint32_t count = 0;
  if (shared.Any()) {
    const ChartData values = ReadValues(names, series);
    count = values.count;
    for (const ChartDataPoint& point : values.points) count = std::max(count, point.index + 1);
    count = std::min(count, kMostLabels);
    // An area is labelled as a whole.
    const char* const kind = LocalName(series.chart.name());
    const bool area = std::strcmp(kind, "areaChart") == 0 || std::strcmp(kind, "area3DChart") == 0;
    if (area) count = std::min(count, 1u);
  }
  auto next = single.begin();
  for (std::uint32_t point = 0; point < count || next != single.end(); ++point) {
    if (point >= count) point = next->first;
    SeriesLabel label{point, shared, false, {}};
    if (next != single.end() && next->first == point) {
      label.node = (next++)->second;
      if (Flag(names, label.node, "delete", false)) continue;
      label.flags = ReadFlags(names, label.node, {});
      label.typed = bool(names.Child(names.Child(label.node, kC, "tx"), kC, "rich"));
      if (!label.typed && !label.flags.Any()) continue;
    }
    labels.push_back(label);
  }
  return labels;
}

}  // namespace quillmarch::host::deck
