// One chart part: its titles, axes, series and labels, and edits that keep every byte around them.
//
// Axis types are 1 for categories, 2 for values, 3 for series; groups 1 (primary) and 2. Series and
// labels are counted from 0 here. What was put reads back at once; Commit() makes bytes of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/deck/XmlNames.h"
#include "host/deck/chart/ChartData.h"
#include "host/deck/chart/ChartRefresh.h"
#include "host/deck/chart/ChartSeries.h"
#include "host/deck/text/RunFormats.h"
#include "host/deck/text/TextBody.h"
#include "host/package/xml/Splice.h"

namespace quillmarch::host::deck {

// Where the words of a title or label come from.
enum class ChartTextState : std::uint8_t {
  kNone,       // there is no such title
  kGenerated,  // the host program makes them
  kLinked,     // from a cell, `text` as it was read last
  kTyped,
};

struct ChartText {
  ChartTextState state = ChartTextState::kNone;
  Wide text;     // CR between paragraphs
  Wide formula;  // of kLinked
};

class ChartPart {
 public:
  // `bytes` is well-formed. Null when it is no chart.
  static std::unique_ptr<ChartPart> Parse(std::string bytes);
  ChartPart(const ChartPart&) = delete;
  ChartPart& operator=(const ChartPart&) = delete;

  // One of the newer kinds (waterfall, treemap and so on), whose parts have another form: it is
  // known for a chart, and all its texts are left alone.
  bool Extended() const { return extended_; }

  ChartText Title();
  // All of it takes the look of what stood first there. Also below: false when there is no such
  // title; a text that is there already is no edit.
  bool PutTitle(WideView text);

  // Whether there is such an axis and it is shown.
  bool HasAxis(int type, int group) const;
  ChartText AxisTitle(int type, int group);
  bool PutAxisTitle(int type, int group, WideView text);
  ChartText UnitLabel(int type, int group);
  bool PutUnitLabel(int type, int group, WideView text);

  std::size_t SeriesCount() const { return series_.size(); }
  // In the order that the chart draws them in.
  const ChartSeries& Series(std::size_t series) const { return series_[series]; }
  Wide SeriesNameText(std::size_t series) const;
  Wide Formula(std::size_t series) const { return SeriesFormula(names_, series_[series]); }
  ChartData Categories(std::size_t series) const { return ReadCategories(names_, series_[series]); }
  ChartData Values(std::size_t series) const { return ReadValues(names_, series_[series]); }
  // A typed name, which a reference gives way to.
  void PutSeriesName(std::size_t series, WideView text);
  // The text of one category of the innermost level, in the cache of a reference or as a literal.
  // False when the series has no such point.
  bool PutCategory(std::size_t series, std::uint32_t index, WideView text);

  std::vector<SeriesLabel> Labels(std::size_t series) const {
    return ReadLabels(names_, series_[series]);
  }
  // `label` is one that Labels gave for the series since the last Commit. A typed text with its
  // fields filled in; empty for a generated one.
  Wide LabelText(std::size_t series, const SeriesLabel& label);
  bool PutLabelText(const SeriesLabel& label, WideView text);

  // The relationship of the workbook, empty when the chart has none.
  std::string WorkbookId() const;
  // Whether hidden rows and columns are left out.
  bool VisibleCellsOnly() const;
  // Lets every cache follow the sheet: names, categories, values, linked titles, labels from cells.
  // Whatever `read` cannot give stays as it is. Commits first.
  void Refresh(const SheetReader& read);

  bool Edited() const;
  // Takes all edits into the bytes; false, and nothing is changed, when memory runs out.
  bool Commit();
  // As of the last Commit.
  const std::string& Bytes() const { return bytes_; }

 private:
  struct Axis {
    pugi::xml_node node;
    int type = 0;
    int group = 0;
  };

  ChartPart() = default;
  bool Load(std::string bytes);
  void ReadPlot(pugi::xml_node plot);
  pugi::xml_node AxisNode(int type, int group) const;
  Wide GeneratedTitle() const;
  TextBody* Body(pugi::xml_node rich);
  ChartText Read(pugi::xml_node holder, const Wide& generated);
  bool Put(pugi::xml_node holder, WideView text);
  std::string Raw(pugi::xml_node node) const;
  std::string RichXml(pugi::xml_node holder, WideView text) const;

  std::string bytes_;
  std::unique_ptr<pugi::xml_document> document_;
  XmlNames names_{""};
  std::unique_ptr<RunFormats> formats_;
  bool extended_ = false;
  std::string prefix_;         // of the chart's namespace, with its colon
  std::string drawingPrefix_;  // of the drawing's; empty when the part does not declare it
  pugi::xml_node chart_;
  std::vector<Axis> axes_;
  std::vector<ChartSeries> series_;
  std::map<const void*, std::unique_ptr<TextBody>> bodies_;  // by c:rich
  // What was put where there is no c:rich: by the element that it is about.
  struct Written {
    Wide text;
    Edit edit;
  };
  std::map<const void*, Written> written_;
};

}  // namespace quillmarch::host::deck
