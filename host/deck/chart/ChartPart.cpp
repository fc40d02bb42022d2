#include "host/deck/chart/ChartPart.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/deck/chart/ChartEdit.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kC = XmlNamespace::kChart;
constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr std::string_view kExtendedSpace =
    "http://schemas.microsoft.com/office/drawing/2014/chartex";
constexpr std::string_view kDrawingSpace = "http://schemas.openxmlformats.org/drawingml/2006/main";
constexpr std::string_view kStrictDrawingSpace = "http://purl.oclc.org/ooxml/drawingml/main";
constexpr std::string_view kStrictChartSpace = "http://purl.oclc.org/ooxml/drawingml/chart";

constexpr int kCategoryAxis = 1;
constexpr int kValueAxis = 2;
constexpr int kSeriesAxis = 3;

Wide WholeText(TextBody& body) {
  return body.Text({0, body.Length()});
}

// What PowerPoint shows for a unit of its own, in an English one.
Wide UnitWord(std::string_view unit) {
  struct Row {
    std::string_view unit;
    WideView word;
  };
  constexpr Row kRows[] = {
      {"hundreds", u"Hundreds"},           {"thousands", u"Thousands"},
      {"tenThousands", u"x 10000"},        {"hundredThousands", u"x 100000"},
      {"millions", u"Millions"},           {"tenMillions", u"x 10000000"},
      {"hundredMillions", u"x 100000000"}, {"billions", u"Billions"},
      {"trillions", u"Trillions"},
  };
  for (const Row& row : kRows) {
    if (row.unit == unit) return Wide(row.word);
  }
  return {};
}

void ReplaceAll(Wide& text, WideView from, const Wide& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != Wide::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

std::unique_ptr<ChartPart> ChartPart::Parse(std::string bytes) {
  std::unique_ptr<ChartPart> part(new ChartPart());
  return part->Load(std::move(bytes)) ? std::move(part) : nullptr;
}

bool ChartPart::Load(std::string bytes) {
  auto document = std::make_unique<pugi::xml_document>();
  if (!ParseXml(*document, bytes)) return false;
  bodies_.clear();
  written_.clear();
  axes_.clear();
  series_.clear();
  bytes_ = std::move(bytes);
  document_ = std::move(document);
  names_ = XmlNames(bytes_);
  formats_ = std::make_unique<RunFormats>(names_, bytes_);

  const pugi::xml_node root = document_->document_element();
  if (std::strcmp(LocalName(root.name()), "chartSpace") != 0) return false;
  const std::string_view prefix = PrefixWithColon(root.name());
  prefix_ = prefix;
  const std::string uri =
      names_.UriOfPrefix(root, prefix.substr(0, prefix.empty() ? 0 : prefix.size() - 1));
  extended_ = uri == kExtendedSpace;
  if (extended_) return true;
  if (!names_.Is(root, kC, "chartSpace")) return false;
  drawingPrefix_.clear();
  for (const pugi::xml_attribute attribute : root.attributes()) {
    const std::string_view name = attribute.name();
    if (name.starts_with("xmlns:") && NamespaceOf(std::string_view(attribute.value())) == kA) {
      drawingPrefix_ = std::string(name.substr(6)) + ":";
    }
  }
  chart_ = names_.Child(root, kC, "chart");
  ReadPlot(names_.Child(chart_, kC, "plotArea"));
  return true;
}

// The first chart of the plot and those on its axes are the primary group.
void ChartPart::ReadPlot(pugi::xml_node plot) {
  std::vector<std::vector<std::string>> groups;
  for (const pugi::xml_node chart : plot.children()) {
    const std::string_view local = LocalName(chart.name());
    if (names_.SpaceOf(chart) != kC || !local.ends_with("Chart")) continue;
    std::vector<std::string> ids;
    for (const pugi::xml_node child : chart.children()) {
      if (names_.Is(child, kC, "axId")) ids.emplace_back(child.attribute("val").value());
      if (!names_.Is(child, kC, "ser")) continue;
      ChartSeries series{child, chart, 0, 0};
      series.index = WholeAttribute(names_.Child(child, kC, "idx"), "val", 0);
      series.order = WholeAttribute(names_.Child(child, kC, "order"), "val", series.index);
      series_.push_back(series);
    }
    if (!ids.empty() && std::find(groups.begin(), groups.end(), ids) == groups.end()) {
      groups.push_back(std::move(ids));
    }
  }
  std::stable_sort(
      series_.begin(), series_.end(), [](const ChartSeries& left, const ChartSeries& right) {
        return left.order != right.order ? left.order < right.order : left.index < right.index;
      });
  for (const pugi::xml_node axis : plot.children()) {
    const std::string_view local = LocalName(axis.name());
    if (names_.SpaceOf(axis) != kC || !local.ends_with("Ax")) continue;
    const std::string id = names_.Child(axis, kC, "axId").attribute("val").value();
    Axis found{axis, kValueAxis, 0};
    for (std::size_t group = 0; group < groups.size() && found.group == 0; ++group) {
      const std::vector<std::string>& ids = groups[group];
      if (std::find(ids.begin(), ids.end(), id) != ids.end()) {
        found.group = static_cast<int>(group) + 1;
      }
    }
    if (local == "serAx") {
      found.type = kSeriesAxis;
    } else if (local != "valAx") {
      found.type = kCategoryAxis;
    } else if (found.group > 0) {
      // Where both axes show values, as in a scatter chart, the level one stands for categories.
      const std::vector<std::string>& ids = groups[static_cast<std::size_t>(found.group) - 1];
      const std::string_view place = names_.Child(axis, kC, "axPos").attribute("val").value();
      const bool both =
          std::count_if(plot.begin(), plot.end(), [&](pugi::xml_node other) {
            return names_.Is(other, kC, "valAx") &&
                   std::find(ids.begin(), ids.end(),
                             names_.Child(other, kC, "axId").attribute("val").value()) != ids.end();
          }) > 1;
      if (both && (place == "b" || place == "t")) found.type = kCategoryAxis;
    }
    axes_.push_back(found);
  }
}

pugi::xml_node ChartPart::AxisNode(int type, int group) const {
  for (const Axis& axis : axes_) {
    if (axis.type == type && axis.group == group) return axis.node;
  }
  return {};
}

std::string ChartPart::Raw(pugi::xml_node node) const {
  return std::string(RawElement(bytes_, node));
}

TextBody* ChartPart::Body(pugi::xml_node rich) {
  std::unique_ptr<TextBody>& body = bodies_[rich.internal_object()];
  if (!body) body = std::make_unique<TextBody>(names_, bytes_, *formats_, rich);
  return body.get();
}

ChartText ChartPart::Read(pugi::xml_node holder, const Wide& generated) {
  if (!holder) return {};
  const auto written = written_.find(holder.internal_object());
  if (written != written_.end()) return {ChartTextState::kTyped, written->second.text, {}};
  const pugi::xml_node text = names_.Child(holder, kC, "tx");
  if (const pugi::xml_node rich = names_.Child(text, kC, "rich")) {
    return {ChartTextState::kTyped, WholeText(*Body(rich)), {}};
  }
  const ChartData linked = ReadChartData(names_, text);
  if (linked.reference) return {ChartTextState::kLinked, linked.TextAt(0), linked.formula};
  return {ChartTextState::kGenerated, generated, {}};
}

// The look of a text that was not typed is in c:txPr.
std::string ChartPart::RichXml(pugi::xml_node holder, WideView text) const {
  const pugi::xml_node look = names_.Child(holder, kC, "txPr");
  const std::string a = drawingPrefix_.empty() ? "a:" : drawingPrefix_;
  std::string xml = "<" + prefix_ + "rich";
  if (drawingPrefix_.empty()) {
    const pugi::xml_node root = document_->document_element();
    std::string_view prefix = prefix_;
    if (!prefix.empty()) prefix.remove_suffix(1);
    const bool strict = names_.UriOfPrefix(root, prefix) == kStrictChartSpace;
    xml.append(" xmlns:a=\"").append(strict ? kStrictDrawingSpace : kDrawingSpace).append("\"");
  }
  std::string body = Raw(names_.Child(look, kA, "bodyPr"));
  std::string list = Raw(names_.Child(look, kA, "lstStyle"));
  if (body.empty()) body = "<" + a + "bodyPr/>";
  if (list.empty()) list = "<" + a + "lstStyle/>";
  xml += ">" + body + list;
  const std::string paragraph = Raw(names_.Child(names_.Child(look, kA, "p"), kA, "pPr"));
  const auto run = [&](WideView piece) {
    return "<" + a + "r><" + a + "t>" + EscapeText(ToUtf8(piece)) + "</" + a + "t></" + a + "r>";
  };
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find_first_of(u"\r\n", at), text.size());
    xml += "<" + a + "p>" + paragraph;
    for (std::size_t piece = at; piece <= end;) {
      const std::size_t stop = std::min(text.find(u'\v', piece), end);
      if (piece > at) xml += "<" + a + "br/>";
      if (stop > piece) xml += run(text.substr(piece, stop - piece));
      piece = stop + 1;
    }
    xml += "</" + a + "p>";
    at = end + (text.substr(end).starts_with(u"\r\n") ? 2 : 1);
  }
  return xml + "</" + prefix_ + "rich>";
}

bool ChartPart::Put(pugi::xml_node holder, WideView text) {
  if (!holder) return false;
  const pugi::xml_node old = names_.Child(holder, kC, "tx");
  if (const pugi::xml_node rich = names_.Child(old, kC, "rich")) {
    TextBody& body = *Body(rich);
    TextSpan whole{0, body.Length()};
    return WholeText(body) == text || body.PutText(whole, text);
  }
  const std::string xml = "<" + prefix_ + "tx>" + RichXml(holder, text) + "</" + prefix_ + "tx>";
  Edit edit;
  if (old) {
    edit = ReplaceElement(bytes_, old, xml);
  } else {
    // In a c:title the text comes first, elsewhere the layout does.
    pugi::xml_node after;
    if (!names_.Is(holder, kC, "title")) {
      after = names_.Child(holder, kC, "layout");
      if (!after) after = names_.Child(holder, kC, "idx");
    }
    edit = InsertElement(bytes_, holder, after, xml);
  }
  written_.insert_or_assign(holder.internal_object(), Written{Wide(text), std::move(edit)});
  return true;
}

// With one series its name is the title, as long as nobody typed another.
Wide ChartPart::GeneratedTitle() const {
  const Wide name = series_.size() == 1 ? SeriesNameText(0) : Wide();
  return name.empty() ? u"Chart Title" : name;
}

ChartText ChartPart::Title() {
  return Read(names_.Child(chart_, kC, "title"), GeneratedTitle());
}

bool ChartPart::PutTitle(WideView text) {
  return Put(names_.Child(chart_, kC, "title"), text);
}

bool ChartPart::HasAxis(int type, int group) const {
  const pugi::xml_node axis = AxisNode(type, group);
  const pugi::xml_node gone = names_.Child(axis, kC, "delete");
  return axis && !(gone && FlagAttribute(gone, "val") != 0);
}

ChartText ChartPart::AxisTitle(int type, int group) {
  return Read(names_.Child(AxisNode(type, group), kC, "title"), u"Axis Title");
}

bool ChartPart::PutAxisTitle(int type, int group, WideView text) {
  return Put(names_.Child(AxisNode(type, group), kC, "title"), text);
}

ChartText ChartPart::UnitLabel(int type, int group) {
  const pugi::xml_node units = names_.Child(AxisNode(type, group), kC, "dispUnits");
  const pugi::xml_node built = names_.Child(units, kC, "builtInUnit");
  const pugi::xml_node own = names_.Child(units, kC, "custUnit");
  Wide word = own ? u"x " + ToWide(own.attribute("val").value())
                  : UnitWord(built && built.attribute("val") ? built.attribute("val").value()
                                                             : "thousands");
  return Read(names_.Child(units, kC, "dispUnitsLbl"), word);
}

bool ChartPart::PutUnitLabel(int type, int group, WideView text) {
  const pugi::xml_node units = names_.Child(AxisNode(type, group), kC, "dispUnits");
  return Put(names_.Child(units, kC, "dispUnitsLbl"), text);
}

Wide ChartPart::SeriesNameText(std::size_t series) const {
  const auto written = written_.find(series_[series].node.internal_object());
  if (written != written_.end()) return written->second.text;
  const SeriesName name = ReadSeriesName(names_, series_[series]);
  return name.found ? name.text : u"Series" + Decimal(static_cast<std::int64_t>(series) + 1);
}

void ChartPart::PutSeriesName(std::size_t series, WideView text) {
  const pugi::xml_node node = series_[series].node;
  const SeriesName name = ReadSeriesName(names_, series_[series]);
  if (name.found && !name.reference && SeriesNameText(series) == text) return;
  const std::string xml = "<" + prefix_ + "v>" + EscapeText(ToUtf8(text)) + "</" + prefix_ + "v>";
  Edit edit;
  if (const pugi::xml_node holder = names_.Child(node, kC, "tx")) {
    edit = ReplaceContent(bytes_, holder, xml);
  } else {
    pugi::xml_node after = names_.Child(node, kC, "order");
    if (!after) after = names_.Child(node, kC, "idx");
    edit = InsertElement(bytes_, node, after, "<" + prefix_ + "tx>" + xml + "</" + prefix_ + "tx>");
  }
  written_.insert_or_assign(node.internal_object(), Written{Wide(text), std::move(edit)});
}

bool ChartPart::PutCategory(std::size_t series, std::uint32_t index, WideView text) {
  const ChartData data = Categories(series);
  for (const ChartDataPoint& point : data.points) {
    if (point.index != index || point.level != 0) continue;
    if (data.kind == ChartDataKind::kNumber) return false;
    const pugi::xml_node value = names_.Child(point.node, kC, "v");
    if (!value) return false;
    Edit edit = ReplaceContent(bytes_, value, EscapeText(ToUtf8(text)));
    written_.insert_or_assign(value.internal_object(), Written{Wide(text), std::move(edit)});
    return true;
  }
  return false;
}

Wide ChartPart::LabelText(std::size_t series, const SeriesLabel& label) {
  if (!label.typed) return {};
  Wide text = Read(label.node, {}).text;
  if (text.find(u'[') == Wide::npos) return text;
  ReplaceAll(text, u"[CELLRANGE]", LabelFromCells(names_, series_[series], label.point));
  ReplaceAll(text, u"[SERIES NAME]", SeriesNameText(series));
  ReplaceAll(text, u"[CATEGORY NAME]", Categories(series).TextAt(label.point));
  ReplaceAll(text, u"[VALUE]", Values(series).TextAt(label.point));
  return text;
}

bool ChartPart::PutLabelText(const SeriesLabel& label, WideView text) {
  return Put(label.node, text);
}

std::string ChartPart::WorkbookId() const {
  const pugi::xml_node data = names_.Child(document_->document_element(), kC, "externalData");
  return std::string(names_.RelationshipAttribute(data, "id"));
}

bool ChartPart::VisibleCellsOnly() const {
  const pugi::xml_node flag = names_.Child(chart_, kC, "plotVisOnly");
  return flag && FlagAttribute(flag, "val") != 0;
}

bool ChartPart::Edited() const {
  if (!written_.empty()) return true;
  return std::any_of(bodies_.begin(), bodies_.end(),
                     [](const auto& body) { return body.second->Edited(); });
}

bool ChartPart::Commit() {
  if (!Edited()) return true;
  std::vector<Edit> edits;
  for (const auto& [node, body] : bodies_) body->AppendEdits(edits);
  for (const auto& [node, written] : written_) edits.push_back(written.edit);
  return Load(ApplyEdits(bytes_, std::move(edits)));
}

void ChartPart::Refresh(const SheetReader& read) {
  if (extended_ || !Commit()) return;
  std::vector<Edit> edits =
      RefreshEdits(names_, bytes_, document_->document_element(), VisibleCellsOnly(), read);
  if (!edits.empty()) Load(ApplyEdits(bytes_, std::move(edits)));
}

}  // namespace quillmarch::host::deck
