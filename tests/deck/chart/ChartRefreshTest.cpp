#include "host/deck/chart/ChartRefresh.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/deck/chart/ChartPart.h"
#include "host/package/xml/XmlCheck.h"

namespace quillmarch::host::deck {

namespace {

std::string Chart(const std::string& series) {
  return "<c:chartSpace "
         "xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\"><c:chart>"
         "<c:plotArea><c:barChart><c:ser>" +
         series +
         "</c:ser></c:barChart></c:plotArea><c:plotVisOnly val=\"1\"/></c:chart></c:chartSpace>";
}

std::string Point(int index, const std::string& text) {
  return "<c:pt idx=\"" + std::to_string(index) + "\"><c:v>" + text + "</c:v></c:pt>";
}

std::string Cache(const std::string& kind, int count, const std::string& points) {
  return "<c:" + kind + "Cache><c:ptCount val=\"" + std::to_string(count) + "\"/>" + points +
         "</c:" + kind + "Cache>";
}

SheetPoint Words(const Wide& text) {
  return {!text.empty(), false, {}, text};
}
SheetPoint Number(const std::string& value) {
  return {true, true, value, ToWide(value)};
}

// A sheet of blocks by formula.
using Sheet = std::map<Wide, SheetBlock>;

std::string Refreshed(const std::string& xml, const Sheet& sheet) {
  const auto part = ChartPart::Parse(xml);
  EXPECT_NE(part, nullptr);
  part->Refresh([&](const Wide& formula, bool visibleOnly, SheetBlock& block) {
    EXPECT_TRUE(visibleOnly);
    const auto found = sheet.find(formula);
    if (found != sheet.end()) block = found->second;
    return found != sheet.end();
  });
  EXPECT_EQ(CheckXml(part->Bytes()).fault, XmlFault::kNone);
  return part->Bytes();
}

}  // namespace

TEST(ChartRefresh, OnlyTextsThatDifferArePut) {
  const auto xml = [](const std::string& second) {
    return Chart("<c:cat><c:strRef><c:f>S!A1:A3</c:f>" +
                 Cache("str", 3, Point(0, "one") + "\n" + Point(2, second)) +
                 "</c:strRef></c:cat>");
  };
  const Sheet same = {{u"S!A1:A3", {3, 1, {Words(u"one"), Words(u""), Words(u"two")}}}};
  EXPECT_EQ(Refreshed(xml("two"), same), xml("two"));
  const Sheet other = {{u"S!A1:A3", {3, 1, {Words(u"one"), Words(u""), Words(u"<2>")}}}};
  EXPECT_EQ(Refreshed(xml("two"), other), xml("&lt;2&gt;"));
  EXPECT_EQ(Refreshed(xml("two"), {}), xml("two"));
}

TEST(ChartRefresh, ACacheOfOtherPointsIsMadeAnew) {
  const std::string xml = Chart(
      "<c:tx><c:strRef><c:f>S!B1</c:f></c:strRef></c:tx>"
      "<c:cat><c:strRef><c:f>S!A1:A2</c:f>" +
      Cache("str", 1, Point(0, "old")) + "</c:strRef></c:cat>");
  const Sheet sheet = {{u"S!A1:A2", {2, 1, {Words(u""), Words(u"new")}}},
                       {u"S!B1", {1, 1, {Words(u"name")}}}};
  EXPECT_EQ(Refreshed(xml, sheet),
            Chart("<c:tx><c:strRef><c:f>S!B1</c:f>" + Cache("str", 1, Point(0, "name")) +
                  "</c:strRef></c:tx><c:cat><c:strRef><c:f>S!A1:A2</c:f>" +
                  Cache("str", 2, Point(1, "new")) + "</c:strRef></c:cat>"));
}

TEST(ChartRefresh, NumbersKeepTheirFormatAndTheirSpellingWhereTheyAreTheSame) {
  const auto xml = [](const std::string& points) {
    return Chart(
        "<c:val><c:numRef><c:f>S!B1:B2</c:f><c:numCache><c:formatCode>0%</c:formatCode>"
        "<c:ptCount val=\"2\"/>" +
        points + "</c:numCache></c:numRef></c:val>");
  };
  EXPECT_EQ(Refreshed(xml(Point(0, "0.50") + Point(1, "2")),
                      {{u"S!B1:B2", {2, 1, {Number("0.5"), Number("2")}}}}),
            xml(Point(0, "0.50") + Point(1, "2")));
  EXPECT_EQ(Refreshed(xml(Point(0, "0.50") + Point(1, "2")),
                      {{u"S!B1:B2", {2, 1, {Words(u"n/a"), Number("3")}}}}),
            xml(Point(1, "3")));
  EXPECT_EQ(Refreshed(xml(Point(0, "23.983792913190126")),
                      {{u"S!B1:B2", {2, 1, {Number("23.98379291319016"), Words(u"")}}}}),
            xml(Point(0, "23.983792913190126")));
  const std::string own = "<c:pt idx=\"1\" formatCode=\"&quot;n&quot;0\"><c:v>2</c:v></c:pt>";
  EXPECT_EQ(Refreshed(xml(own), {{u"S!B1:B2", {2, 1, {Number("1"), Number("2")}}}}),
            xml(Point(0, "1") + own));
}

TEST(ChartRefresh, CategoriesThatTurnIntoWordsBecomeTexts) {
  const std::string xml =
      Chart("<c:cat><c:numRef><c:f>S!A1:A2</c:f>" +
            Cache("num", 2, Point(0, "2023") + Point(1, "2024")) + "</c:numRef></c:cat>");
  EXPECT_EQ(Refreshed(xml, {{u"S!A1:A2", {2, 1, {Number("2023"), Words(u"later")}}}}),
            Chart("<c:cat><c:strRef><c:f>S!A1:A2</c:f>" +
                  Cache("str", 2, Point(0, "2023") + Point(1, "later")) + "</c:strRef></c:cat>"));
}

TEST(ChartRefresh, LevelsRunFromTheInnermostOutwards) {
  const auto xml = [](const std::string& inner, const std::string& outer) {
    return Chart(
        "<c:cat><c:multiLvlStrRef><c:f>S!A1:B2</c:f><c:multiLvlStrCache><c:ptCount val=\"2\"/>"
        "<c:lvl>" +
        inner + "</c:lvl><c:lvl>" + outer +
        "</c:lvl></c:multiLvlStrCache></c:multiLvlStrRef></c:cat>");
  };
  const std::string old = xml(Point(0, "i1") + Point(1, "i2"), Point(0, "o1"));
  const Sheet texts = {
      {u"S!A1:B2", {2, 2, {Words(u"O1"), Words(u"I1"), Words(u""), Words(u"i2")}}}};
  EXPECT_EQ(Refreshed(old, texts), xml(Point(0, "I1") + Point(1, "i2"), Point(0, "O1")));
  const Sheet shape = {
      {u"S!A1:B2", {2, 2, {Words(u"o1"), Words(u"i1"), Words(u"o2"), Words(u"i2")}}}};
  EXPECT_EQ(Refreshed(old, shape),
            xml(Point(0, "i1") + Point(1, "i2"), Point(0, "o1") + Point(1, "o2")));
}

TEST(ChartRefresh, LabelsFromCellsFollow) {
  const auto xml = [](const std::string& text) {
    return Chart(
        "<c:extLst><c:ext xmlns:c15=\"urn:c15\"><c15:datalabelsRange><c15:f>S!D1</c15:f>"
        "<c15:dlblRangeCache><c:ptCount val=\"1\"/>" +
        Point(0, text) + "</c15:dlblRangeCache></c15:datalabelsRange></c:ext></c:extLst>");
  };
  EXPECT_EQ(Refreshed(xml("a"), {{u"S!D1", {1, 1, {Words(u"b")}}}}), xml("b"));
}

TEST(ChartRefresh, PendingEditsAreTakenFirst) {
  const auto part = ChartPart::Parse(
      Chart("<c:idx val=\"0\"/><c:order val=\"0\"/><c:tx><c:strRef><c:f>S!B1</c:f>" +
            Cache("str", 1, Point(0, "a")) + "</c:strRef></c:tx><c:cat><c:strRef><c:f>S!A1</c:f>" +
            Cache("str", 1, Point(0, "x")) + "</c:strRef></c:cat>"));
  part->PutSeriesName(0, u"typed");
  part->Refresh([](const Wide&, bool, SheetBlock& block) {
    block = {1, 1, {Words(u"sheet")}};
    return true;
  });
  EXPECT_EQ(part->SeriesNameText(0), u"typed");
  EXPECT_EQ(part->Categories(0).TextAt(0), u"sheet");
}

}  // namespace quillmarch::host::deck
