#include "host/deck/chart/ChartPart.h"

#include <gtest/gtest.h>

#include <string>

#include "host/package/xml/XmlCheck.h"

namespace quillmarch::host::deck {

namespace {

const std::string kSpaces =
    " xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\""
    " xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\""
    " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"";

std::string Space(const std::string& chart, const std::string& after = "") {
  return "<?xml version=\"1.0\"?>\r\n<c:chartSpace" + kSpaces + "><c:chart>" + chart +
         "</c:chart>" + after + "</c:chartSpace>";
}

std::string Plot(const std::string& content, const std::string& title = "") {
  return Space(title + "<c:plotArea><c:layout/>" + content +
               "</c:plotArea><c:plotVisOnly val=\"1\"/>");
}

std::string Rich(const std::string& paragraphs) {
  return "<c:tx><c:rich><a:bodyPr rot=\"0\"/><a:lstStyle/>" + paragraphs + "</c:rich></c:tx>";
}

std::string Typed(const std::string& text) {
  return Rich(
      "<a:p><a:pPr><a:defRPr sz=\"1800\"/></a:pPr><a:r><a:rPr lang=\"en-US\" b=\"1\"/><a:t>" +
      text + "</a:t></a:r></a:p>");
}

std::string Cache(const std::string& kind, const std::string& points, int count) {
  return "<c:" + kind + "Cache><c:ptCount val=\"" + std::to_string(count) + "\"/>" + points +
         "</c:" + kind + "Cache>";
}

std::string Point(int index, const std::string& text) {
  return "<c:pt idx=\"" + std::to_string(index) + "\"><c:v>" + text + "</c:v></c:pt>";
}

std::string Name(const std::string& formula, const std::string& text) {
  return "<c:tx><c:strRef><c:f>" + formula + "</c:f>" + Cache("str", Point(0, text), 1) +
         "</c:strRef></c:tx>";
}

std::string Categories(const std::string& formula = "Sheet1!$A$2:$A$4") {
  return "<c:cat><c:strRef><c:f>" + formula + "</c:f>" +
         Cache("str", Point(0, "One") + Point(2, "Three"), 3) + "</c:strRef></c:cat>";
}

std::string Values(const std::string& formula = "Sheet1!$B$2:$B$4") {
  return "<c:val><c:numRef><c:f>" + formula + "</c:f>" +
         Cache("num", Point(0, "4.3") + Point(1, "2.5") + Point(2, "3"), 3) + "</c:numRef></c:val>";
}

std::string Series(int index, const std::string& content, int order = -1) {
  return "<c:ser><c:idx val=\"" + std::to_string(index) + "\"/><c:order val=\"" +
         std::to_string(order < 0 ? index : order) + "\"/>" + content + "</c:ser>";
}

std::string Axes(const std::string& first, const std::string& second) {
  return "<c:axId val=\"" + first + "\"/><c:axId val=\"" + second + "\"/>";
}

std::string Axis(const std::string& kind, const std::string& id, const std::string& content = "",
                 const std::string& place = "b", bool gone = false) {
  return "<c:" + kind + "><c:axId val=\"" + id + "\"/><c:delete val=\"" + (gone ? "1" : "0") +
         "\"/><c:axPos val=\"" + place + "\"/>" + content + "</c:" + kind + ">";
}

std::string Bar(const std::string& series) {
  return "<c:barChart>" + series + Axes("1", "2") + "</c:barChart>" + Axis("catAx", "1") +
         Axis("valAx", "2", "", "l");
}

std::unique_ptr<ChartPart> Parsed(const std::string& xml) {
  EXPECT_EQ(CheckXml(xml).fault, XmlFault::kNone) << xml;
  std::unique_ptr<ChartPart> part = ChartPart::Parse(xml);
  EXPECT_NE(part, nullptr);
  return part;
}

// The part after its edits; well-formed in any case.
std::string Committed(ChartPart& part) {
  EXPECT_TRUE(part.Commit());
  EXPECT_FALSE(part.Edited());
  EXPECT_EQ(CheckXml(part.Bytes()).fault, XmlFault::kNone) << part.Bytes();
  return part.Bytes();
}

std::string Instead(std::string xml, const std::string& from, const std::string& to) {
  const std::size_t at = xml.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? xml : xml.replace(at, from.size(), to);
}

}  // namespace

TEST(ChartPart, OnlyChartsAreTakenAndTheNewerKindsAreKnown) {
  EXPECT_EQ(ChartPart::Parse("<p:sld xmlns:p=\"http://schemas.openxmlformats.org/presentationml/"
                             "2006/main\"/>"),
            nullptr);
  EXPECT_EQ(ChartPart::Parse("<c:chartSpace xmlns:c=\"urn:x\"/>"), nullptr);
  const auto part = Parsed(
      "<cx:chartSpace xmlns:cx=\"http://schemas.microsoft.com/office/drawing/2014/chartex\"/>");
  EXPECT_TRUE(part->Extended());
  EXPECT_EQ(part->Title().state, ChartTextState::kNone);
  EXPECT_FALSE(part->PutTitle(u"x"));
  EXPECT_EQ(part->SeriesCount(), 0u);
  EXPECT_FALSE(part->HasAxis(1, 1));
}

TEST(ChartPart, ATypedTitleIsReadAndWrittenInTheLookOfItsFirstRun) {
  const std::string xml =
      Plot(Bar(Series(0, Values())),
           "<c:title>" +
               Rich("<a:p><a:pPr><a:defRPr sz=\"1800\"/></a:pPr><a:r><a:rPr b=\"1\"/><a:t>Big "
                    "</a:t></a:r>"
                    "<a:r><a:rPr "
                    "i=\"1\"/><a:t>sales</a:t></a:r></a:p><a:p><a:r><a:t>2024</a:t></a:r></a:p>") +
               "<c:overlay val=\"0\"/></c:title>");
  const auto part = Parsed(xml);
  EXPECT_EQ(part->Title().state, ChartTextState::kTyped);
  EXPECT_EQ(part->Title().text, u"Big sales\r2024");
  EXPECT_TRUE(part->PutTitle(u"Big sales\r2024"));
  EXPECT_FALSE(part->Edited());
  EXPECT_TRUE(part->PutTitle(u"Ventas & m\u00E1s"));
  EXPECT_EQ(part->Title().text, u"Ventas & m\u00E1s");
  const std::string bytes = Committed(*part);
  EXPECT_NE(bytes.find("<a:r><a:rPr b=\"1\"/><a:t>Ventas &amp; m\u00E1s</a:t></a:r>"),
            std::string::npos)
      << bytes;
  EXPECT_EQ(bytes.find("sales"), std::string::npos);
  EXPECT_EQ(part->Title().text, u"Ventas & m\u00E1s");
}

TEST(ChartPart, AGeneratedTitleIsTheOneSeriesNameOrAGeneralWord) {
  const std::string title =
      "<c:title><c:layout/><c:txPr><a:bodyPr vert=\"horz\"/><a:p><a:pPr>"
      "<a:defRPr sz=\"900\"/></a:pPr></a:p></c:txPr></c:title>";
  auto part = Parsed(Plot(Bar(Series(0, Name("Sheet1!$B$1", "Sales") + Values())), title));
  EXPECT_EQ(part->Title().state, ChartTextState::kGenerated);
  EXPECT_EQ(part->Title().text, u"Sales");
  part = Parsed(Plot(Bar(Series(0, Values()) + Series(1, Values())), title));
  EXPECT_EQ(part->Title().text, u"Chart Title");
  EXPECT_EQ(Parsed(Plot(Bar("")))->Title().state, ChartTextState::kNone);

  const std::string old = part->Bytes();
  EXPECT_TRUE(part->PutTitle(u"One\rTwo\vlines"));
  EXPECT_EQ(part->Title().state, ChartTextState::kTyped);
  const std::string look = "<a:pPr><a:defRPr sz=\"900\"/></a:pPr>";
  EXPECT_EQ(Committed(*part),
            Instead(old, "<c:title>",
                    "<c:title><c:tx><c:rich><a:bodyPr vert=\"horz\"/><a:lstStyle/><a:p>" + look +
                        "<a:r><a:t>One</a:t></a:r></a:p><a:p>" + look +
                        "<a:r><a:t>Two</a:t></a:r><a:br/><a:r><a:t>lines</a:t></a:r></a:p>"
                        "</c:rich></c:tx>"));
  EXPECT_EQ(part->Title().text, u"One\rTwo\vlines");
}

TEST(ChartPart, AnEmptyTitleElementTakesAText) {
  const auto part = Parsed(Plot(Bar(""), "<c:title/>"));
  EXPECT_TRUE(part->PutTitle(u"T"));
  EXPECT_NE(Committed(*part).find("<c:title><c:tx><c:rich>"), std::string::npos);
  EXPECT_EQ(part->Title().text, u"T");
}

TEST(ChartPart, ATitleFromACellShowsItsCacheAndGivesWayToATypedOne) {
  const auto part =
      Parsed(Plot(Bar(""), "<c:title>" + Name("Sheet1!$D$1", "Linked") + "<c:layout/></c:title>"));
  EXPECT_EQ(part->Title().state, ChartTextState::kLinked);
  EXPECT_EQ(part->Title().text, u"Linked");
  EXPECT_EQ(part->Title().formula, u"Sheet1!$D$1");
  EXPECT_TRUE(part->PutTitle(u"Typed"));
  const std::string bytes = Committed(*part);
  EXPECT_EQ(bytes.find("strRef"), std::string::npos);
  EXPECT_EQ(part->Title().state, ChartTextState::kTyped);
}

TEST(ChartPart, AxesBelongToTheGroupOfTheChartOnThem) {
  const auto part = Parsed(
      Plot("<c:barChart>" + Series(0, Values()) + Axes("1", "2") + "</c:barChart><c:lineChart>" +
           Series(1, Values()) + Axes("3", "4") + "</c:lineChart>" +
           Axis("valAx", "4", "<c:title>" + Typed("Right") + "</c:title>", "r") +
           Axis("catAx", "1", "<c:title>" + Typed("Below") + "</c:title>") +
           Axis("valAx", "2", "", "l") + Axis("dateAx", "3", "<c:title/>", "b", true)));
  EXPECT_TRUE(part->HasAxis(1, 1));
  EXPECT_TRUE(part->HasAxis(2, 1));
  EXPECT_FALSE(part->HasAxis(1, 2));
  EXPECT_TRUE(part->HasAxis(2, 2));
  EXPECT_FALSE(part->HasAxis(3, 1));
  EXPECT_EQ(part->AxisTitle(1, 1).text, u"Below");
  EXPECT_EQ(part->AxisTitle(2, 1).state, ChartTextState::kNone);
  EXPECT_EQ(part->AxisTitle(1, 2).text, u"Axis Title");
  EXPECT_EQ(part->AxisTitle(2, 2).text, u"Right");
  EXPECT_FALSE(part->PutAxisTitle(2, 1, u"x"));
  EXPECT_TRUE(part->PutAxisTitle(2, 2, u"Rechts"));
  EXPECT_EQ(Committed(*part).find("Right"), std::string::npos);
  EXPECT_EQ(part->AxisTitle(2, 2).text, u"Rechts");
}

TEST(ChartPart, OfTwoValueAxesTheLevelOneStandsForCategories) {
  const auto part =
      Parsed(Plot("<c:scatterChart>" + Axes("7", "8") + "</c:scatterChart>" +
                  Axis("valAx", "8", "<c:title>" + Typed("Up") + "</c:title>", "l") +
                  Axis("valAx", "7", "<c:title>" + Typed("Along") + "</c:title>", "b")));
  EXPECT_EQ(part->AxisTitle(1, 1).text, u"Along");
  EXPECT_EQ(part->AxisTitle(2, 1).text, u"Up");
}

TEST(ChartPart, ABarChartOnItsSideKeepsItsCategories) {
  const auto part = Parsed(Plot("<c:bar3DChart>" + Axes("1", "2") +
                                "<c:axId val=\"3\"/></c:bar3DChart>" + Axis("catAx", "1", "", "l") +
                                Axis("valAx", "2", "<c:title/>", "b") + Axis("serAx", "3")));
  EXPECT_TRUE(part->HasAxis(1, 1));
  EXPECT_TRUE(part->HasAxis(3, 1));
  EXPECT_EQ(part->AxisTitle(2, 1).state, ChartTextState::kGenerated);
}

TEST(ChartPart, ALabelOfDisplayUnitsIsTheUnitsWordUntilSomebodyTypes) {
  const auto units = [](const std::string& label) {
    return Plot("<c:barChart>" + Axes("1", "2") + "</c:barChart>" + Axis("catAx", "1") +
                Axis("valAx", "2",
                     "<c:dispUnits><c:builtInUnit val=\"millions\"/>" + label + "</c:dispUnits>",
                     "l"));
  };
  EXPECT_EQ(Parsed(units(""))->UnitLabel(2, 1).state, ChartTextState::kNone);
  auto part = Parsed(units("<c:dispUnitsLbl><c:layout/><c:spPr/></c:dispUnitsLbl>"));
  EXPECT_EQ(part->UnitLabel(2, 1).state, ChartTextState::kGenerated);
  EXPECT_EQ(part->UnitLabel(2, 1).text, u"Millions");
  EXPECT_TRUE(part->PutUnitLabel(2, 1, u"Mio."));
  EXPECT_NE(Committed(*part).find("<c:dispUnitsLbl><c:layout/><c:tx><c:rich>"), std::string::npos);
  part = Parsed(units("<c:dispUnitsLbl>" + Typed("in millions") + "</c:dispUnitsLbl>"));
  EXPECT_EQ(part->UnitLabel(2, 1).text, u"in millions");
}

TEST(ChartPart, SeriesComeInTheirOrderFromAllChartsOfThePlot) {
  const auto part =
      Parsed(Plot("<c:lineChart>" + Series(0, Name("Sheet1!$B$1", "Third"), 2) + Axes("1", "2") +
                  "</c:lineChart><c:areaChart>" +
                  Series(1, "<c:tx><c:v>First, \"typed\"</c:v></c:tx>", 0) + Series(2, "", 1) +
                  Axes("1", "2") + "</c:areaChart>" + Axis("catAx", "1") + Axis("valAx", "2")));
  ASSERT_EQ(part->SeriesCount(), 3u);
  EXPECT_EQ(part->SeriesNameText(0), u"First, \"typed\"");
  EXPECT_EQ(part->SeriesNameText(1), u"Series2");
  EXPECT_EQ(part->SeriesNameText(2), u"Third");
  EXPECT_EQ(part->Formula(0), u"=SERIES(\"First, \"\"typed\"\"\",,,1)");
  EXPECT_EQ(part->Formula(2), u"=SERIES(Sheet1!$B$1,,,3)");
}

TEST(ChartPart, DataIsReadFromCachesWithTheirGaps) {
  const auto part =
      Parsed(Plot(Bar(Series(0, Name("Sheet1!$B$1", "S") + Categories() + Values()))));
  const ChartData categories = part->Categories(0);
  EXPECT_EQ(categories.kind, ChartDataKind::kText);
  EXPECT_EQ(categories.count, 3u);
  EXPECT_EQ(categories.TextAt(0), u"One");
  EXPECT_EQ(categories.TextAt(1), u"");
  EXPECT_EQ(categories.TextAt(2), u"Three");
  EXPECT_EQ(part->Values(0).TextAt(0), u"4.3");
  EXPECT_EQ(part->Formula(0), u"=SERIES(Sheet1!$B$1,Sheet1!$A$2:$A$4,Sheet1!$B$2:$B$4,1)");
}

TEST(ChartPart, LevelsLiteralsAndBubblesAreRead) {
  const std::string levels =
      "<c:cat><c:multiLvlStrRef><c:f>S!$A$1:$B$2</c:f><c:multiLvlStrCache><c:ptCount val=\"2\"/>"
      "<c:lvl>" +
      Point(0, "in1") + Point(1, "in2") + "</c:lvl><c:lvl>" + Point(0, "out") +
      "</c:lvl></c:multiLvlStrCache></c:multiLvlStrRef></c:cat>";
  auto part = Parsed(Plot(Bar(Series(0, levels))));
  EXPECT_EQ(part->Categories(0).kind, ChartDataKind::kLevels);
  EXPECT_EQ(part->Categories(0).levels, 2u);
  EXPECT_EQ(part->Categories(0).TextAt(1), u"in2");
  EXPECT_EQ(part->Categories(0).points[2].level, 1u);

  part = Parsed(Plot("<c:bubbleChart>" +
                     Series(0, "<c:xVal><c:strLit><c:ptCount val=\"1\"/>" + Point(0, "a") +
                                   "</c:strLit></c:xVal>"
                                   "<c:yVal><c:numLit><c:ptCount val=\"2\"/>" +
                                   Point(0, "1") + Point(1, "2") +
                                   "</c:numLit></c:yVal><c:bubbleSize><c:numRef><c:f>S!$C$1</c:f></"
                                   "c:numRef></c:bubbleSize>") +
                     Axes("1", "2") + "</c:bubbleChart>"));
  EXPECT_EQ(part->Formula(0), u"=SERIES(,{\"a\"},{1,2},1,S!$C$1)");
}

TEST(ChartPart, ATypedSeriesNameTakesTheReferencesPlace) {
  const std::string xml =
      Plot(Bar(Series(0, Name("Sheet1!$B$1", "Sales") + Values()) + Series(1, Values()) +
               Series(2, "<c:tx><c:v>Typed</c:v></c:tx>")));
  const auto part = Parsed(xml);
  part->PutSeriesName(2, u"Typed");
  EXPECT_FALSE(part->Edited());
  part->PutSeriesName(0, u"Ventas <1>");
  part->PutSeriesName(1, u"Dos");
  EXPECT_EQ(part->SeriesNameText(0), u"Ventas <1>");
  std::string wanted =
      Instead(xml, Name("Sheet1!$B$1", "Sales"), "<c:tx><c:v>Ventas &lt;1&gt;</c:v></c:tx>");
  wanted =
      Instead(wanted, "<c:order val=\"1\"/>", "<c:order val=\"1\"/><c:tx><c:v>Dos</c:v></c:tx>");
  EXPECT_EQ(Committed(*part), wanted);
  EXPECT_EQ(part->SeriesNameText(1), u"Dos");
}

TEST(ChartPart, OneCategoryIsPutAndAllElseStays) {
  const std::string xml = Plot(Bar(Series(0, Categories() + Values())));
  const auto part = Parsed(xml);
  EXPECT_FALSE(part->PutCategory(0, 1, u"gap"));
  EXPECT_TRUE(part->PutCategory(0, 2, u"Tres"));
  EXPECT_EQ(Committed(*part), Instead(xml, "Three", "Tres"));
}

TEST(ChartPart, LabelsFollowTheirFlagsAndTypedOnesKeepTheirText) {
  const std::string flags = "<c:showLegendKey val=\"0\"/><c:showVal val=\"1\"/>";
  const std::string none = "<c:showVal val=\"0\"/><c:showCatName val=\"0\"/>";
  const auto label = [](int point, const std::string& content) {
    return "<c:dLbl><c:idx val=\"" + std::to_string(point) + "\"/>" + content + "</c:dLbl>";
  };
  const auto part = Parsed(Plot(Bar(
      Series(0, "<c:dLbls>" + label(0, "<c:layout/>" + Typed("Peak") + none) +
                    label(1, "<c:delete val=\"1\"/>") + flags + "</c:dLbls>" + Values()) +
      Series(1, "<c:dLbls>" + label(5, Typed("Kept") + flags) + none + "</c:dLbls>" + Values()) +
      Series(2, "<c:dLbls><c:delete val=\"1\"/></c:dLbls>" + Values()) + Series(3, Values()))));
  const auto first = part->Labels(0);
  ASSERT_EQ(first.size(), 2u);
  EXPECT_EQ(first[0].point, 0u);
  EXPECT_TRUE(first[0].typed);
  EXPECT_FALSE(first[0].flags.Any());
  EXPECT_EQ(part->LabelText(0, first[0]), u"Peak");
  EXPECT_EQ(first[1].point, 2u);
  EXPECT_FALSE(first[1].typed);
  EXPECT_TRUE(first[1].flags.value);
  EXPECT_EQ(part->LabelText(0, first[1]), u"");
  EXPECT_FALSE(part->PutLabelText(first[1], u"x"));
  const auto second = part->Labels(1);
  ASSERT_EQ(second.size(), 1u);
  EXPECT_EQ(second[0].point, 5u);
  EXPECT_TRUE(second[0].flags.value);
  EXPECT_EQ(part->LabelText(1, second[0]), u"Kept");
  EXPECT_TRUE(part->Labels(2).empty());
  EXPECT_TRUE(part->Labels(3).empty());

  EXPECT_TRUE(part->PutLabelText(first[0], u"Spitze"));
  EXPECT_EQ(part->LabelText(0, first[0]), u"Spitze");
  const std::string before = part->Bytes();
  EXPECT_EQ(Committed(*part), Instead(before, "Peak", "Spitze"));
}

TEST(ChartPart, ASeriesWithoutLabelsOfItsOwnTakesTheCharts) {
  const auto part =
      Parsed(Plot("<c:areaChart>" + Series(0, Values()) + "<c:dLbls><c:showVal/></c:dLbls>" +
                  Axes("1", "2") + "</c:areaChart><c:pieChart>" + Series(1, Values()) +
                  "<c:dLbls><c:showPercent val=\"1\"/></c:dLbls></c:pieChart>"));
  ASSERT_EQ(part->Labels(0).size(), 1u);
  EXPECT_TRUE(part->Labels(0)[0].flags.value);
  ASSERT_EQ(part->Labels(1).size(), 3u);
  EXPECT_TRUE(part->Labels(1)[2].flags.percentage);
}

TEST(ChartPart, FieldsInALabelShowWhatTheyStandFor) {
  const std::string field = Rich(
      "<a:p><a:fld id=\"{0}\" type=\"CELLRANGE\"><a:t>[CELLRANGE]</a:t></a:fld><a:r><a:t>, "
      "</a:t></a:r><a:fld id=\"{1}\" type=\"SERIESNAME\"><a:t>[SERIES NAME]</a:t></a:fld></a:p>");
  const auto part = Parsed(Plot(Bar(Series(
      0, "<c:tx><c:v>S</c:v></c:tx><c:dLbls><c:dLbl><c:idx val=\"1\"/>" + field +
             "</c:dLbl></c:dLbls>" + Values() +
             "<c:extLst><c:ext uri=\"{x}\" xmlns:c15=\"http://schemas.microsoft.com/office/drawing/"
             "2012/chart\"><c15:datalabelsRange><c15:f>S!$D$1:$D$2</c15:f><c15:dlblRangeCache>"
             "<c:ptCount val=\"2\"/>" +
             Point(0, "north") + Point(1, "south") +
             "</c15:dlblRangeCache></c15:datalabelsRange></c:ext></c:extLst>"))));
  const auto labels = part->Labels(0);
  ASSERT_EQ(labels.size(), 1u);
  EXPECT_EQ(part->LabelText(0, labels[0]), u"south, S");
}

TEST(ChartPart, TheWorkbooksRelationshipIsTold) {
  EXPECT_EQ(Parsed(Plot(""))->WorkbookId(), "");
  const auto part = Parsed(Space("<c:plotArea/>", "<c:externalData r:id=\"rId3\"/>"));
  EXPECT_EQ(part->WorkbookId(), "rId3");
  EXPECT_FALSE(part->VisibleCellsOnly());
}

TEST(ChartPart, AnyPrefixAndStrictNamespacesAreReadAndWritten) {
  const std::string xml =
      "<chartSpace "
      "xmlns=\"http://purl.oclc.org/ooxml/drawingml/chart\"><chart><title><layout/></title>"
      "<plotArea><barChart><ser><idx val=\"0\"/><order "
      "val=\"0\"/></ser></barChart></plotArea></chart>"
      "</chartSpace>";
  const auto part = Parsed(xml);
  EXPECT_EQ(part->SeriesCount(), 1u);
  EXPECT_TRUE(part->PutTitle(u"T"));
  part->PutSeriesName(0, u"N");
  const std::string bytes = Committed(*part);
  EXPECT_NE(bytes.find("<title><tx><rich xmlns:a=\"http://purl.oclc.org/ooxml/drawingml/main\">"),
            std::string::npos)
      << bytes;
  EXPECT_NE(bytes.find("<tx><v>N</v></tx>"), std::string::npos);
  EXPECT_EQ(part->Title().text, u"T");
}

}  // namespace quillmarch::host::deck
