// The charts of real decks: what their parts say is read, marked and judged by a script over
// another reader; their caches are held against the workbooks inside of the decks.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "host/deck/chart/ChartPart.h"
#include "host/package/Package.h"
#include "host/package/xml/XmlCheck.h"
#include "host/workbook/Workbook.h"
#include "support/TempFolder.h"

namespace quillmarch::host::deck {

namespace {

using workbook::CellBlock;
using workbook::CellValue;
using workbook::Workbook;

struct Found {
  std::string where;
  std::string bytes;
  std::string workbook;  // bytes; empty when there is none inside
};

std::vector<Found> Charts() {
  std::vector<std::string> decks;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLMARCH_DECKS)) {
    if (entry.path().extension() == ".pptx") decks.push_back(entry.path().string());
  }
  std::sort(decks.begin(), decks.end());
  std::vector<Found> charts;
  for (const std::string& path : decks) {
    const auto deck = Package::Open(path);
    if (!deck.ok()) continue;
    for (const std::string& name : deck.value()->PartNames()) {
      const std::string type = deck.value()->ContentType(name);
      if (!type.ends_with("drawingml.chart+xml") && !type.ends_with("chartex+xml")) continue;
      const auto bytes = deck.value()->ReadXmlPart(name);
      EXPECT_TRUE(bytes.ok()) << path << " " << bytes.error().words;
      Found found{path + " " + name, bytes.value(), {}};
      const auto part = ChartPart::Parse(bytes.value());
      const std::string id = part && !part->Extended() ? part->WorkbookId() : "";
      const auto relationships = deck.value()->Relationships(name);
      for (const Relationship& each : relationships.value()) {
        if (each.id == id && !each.external && each.target.ends_with(".xlsx")) {
          found.workbook = deck.value()->ReadPart(each.target).value();
        }
      }
      charts.push_back(std::move(found));
    }
  }
  return charts;
}

SheetReader ReaderOf(Workbook& book) {
  return [&book](const Wide& formula, bool visibleOnly, SheetBlock& block) {
    CellBlock cells;
    if (!book.ReadReference(formula, visibleOnly, cells)) return false;
    block.rows = cells.rows;
    block.columns = cells.columns;
    for (const CellBlock::Cell& cell : cells.cells) {
      SheetPoint point;
      point.present = cell.value.kind != CellValue::Kind::kEmpty;
      point.number = cell.value.kind == CellValue::Kind::kNumber ||
                     cell.value.kind == CellValue::Kind::kDate ||
                     cell.value.kind == CellValue::Kind::kCurrency;
      point.text = cell.text;
      char digits[32];
      const auto end = std::to_chars(digits, digits + sizeof digits, cell.value.number).ptr;
      if (point.number) point.value.assign(digits, end);
      block.points.push_back(std::move(point));
    }
    return true;
  };
}

const Wide kMark = u"\u00A4";

// Puts the mark before every text that somebody typed. How many there were.
int Mark(ChartPart& part) {
  int marked = 0;
  const auto mark = [&](const ChartText& text, const auto& put) {
    if (text.state != ChartTextState::kTyped || text.text.empty()) return;
    EXPECT_TRUE(put(kMark + text.text));
    ++marked;
  };
  mark(part.Title(), [&](const Wide& text) { return part.PutTitle(text); });
  for (int group = 1; group <= 2; ++group) {
    for (int type = 1; type <= 3; ++type) {
      mark(part.AxisTitle(type, group),
           [&](const Wide& text) { return part.PutAxisTitle(type, group, text); });
      mark(part.UnitLabel(type, group),
           [&](const Wide& text) { return part.PutUnitLabel(type, group, text); });
    }
  }
  for (std::size_t series = 0; series < part.SeriesCount(); ++series) {
    for (const SeriesLabel& label : part.Labels(series)) {
      if (!label.typed) continue;
      const Wide text = part.LabelText(series, label);
      if (text.empty()) continue;
      EXPECT_TRUE(part.PutLabelText(label, kMark + text));
      ++marked;
    }
  }
  return marked;
}

}  // namespace

TEST(ChartCorpus, MarkedTextsAreAllThatChanges) {
  const std::vector<Found> charts = Charts();
  ASSERT_FALSE(charts.empty());
  const TempFolder folder;
  int marked = 0;
  int extended = 0;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    const auto part = ChartPart::Parse(charts[i].bytes);
    ASSERT_NE(part, nullptr) << charts[i].where;
    if (part->Extended()) {
      ++extended;
      continue;
    }
    EXPECT_GT(part->SeriesCount(), 0u) << charts[i].where;
    marked += Mark(*part);
    ASSERT_TRUE(part->Commit());
    EXPECT_EQ(CheckXml(part->Bytes()).fault, XmlFault::kNone) << charts[i].where;
    const std::string number = std::to_string(i);
    folder.Put(number + ".from", charts[i].where);
    folder.Put(number + ".before.xml", charts[i].bytes);
    folder.Put(number + ".after.xml", part->Bytes());
    std::string series;
    for (std::size_t s = 0; s < part->SeriesCount(); ++s) {
      series += ToUtf8(part->SeriesNameText(s)) + "\x1F" + ToUtf8(part->Formula(s)) + "\x1E";
    }
    folder.Put(number + ".series", series);
  }
  std::printf("%zu charts, %d of the newer kinds, %d texts marked\n", charts.size(), extended,
              marked);
  EXPECT_GT(marked, 0);
  EXPECT_GT(extended, 0);
  const std::string command =
      std::string(QUILLMARCH_PYTHON " -B " QUILLMARCH_CHECK " ") + folder.Path("");
  EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(ChartCorpus, CachesFollowTheSheetAndThenStay) {
  int read = 0;
  int same = 0;
  int followed = 0;
  for (const Found& chart : Charts()) {
    if (chart.workbook.empty()) continue;
    const auto opened = Workbook::Open(chart.workbook);
    ASSERT_TRUE(opened.ok()) << chart.where << opened.error().words;
    Workbook& book = *opened.value();
    const auto part = ChartPart::Parse(chart.bytes);
    part->Refresh(ReaderOf(book));
    EXPECT_EQ(CheckXml(part->Bytes()).fault, XmlFault::kNone) << chart.where;
    ++read;
    if (part->Bytes() == chart.bytes) {
      ++same;
    } else {
      std::printf("refreshed: %s\n", chart.where.c_str());
    }
    const std::string once = part->Bytes();
    part->Refresh(ReaderOf(book));
    EXPECT_EQ(part->Bytes(), once) << chart.where;

    for (std::size_t series = 0; series < part->SeriesCount(); ++series) {
      const SeriesName name = ReadSeriesName(XmlNames(part->Bytes()), part->Series(series));
      const auto areas = workbook::ParseReference(ToUtf8(name.formula));
      if (areas.size() != 1 || areas[0].range.Rows() * areas[0].range.Columns() != 1) continue;
      const int sheet = book.FindSheet(ToWide(areas[0].sheet));
      if (sheet < 0) continue;
      const auto put =
          book.PutText(static_cast<std::size_t>(sheet), areas[0].range.first, u"Neu " + name.text);
      if (!put.ok()) continue;
      part->Refresh(ReaderOf(book));
      EXPECT_EQ(part->SeriesNameText(series), put.value()) << chart.where;
      ++followed;
    }
  }
  std::printf("%d charts with workbooks, %d already agree, %d names followed\n", read, same,
              followed);
  // Nearly every chart was saved by a program that had just read its sheet.
  EXPECT_GE(same * 10, read * 9);
  EXPECT_GT(followed, 0);
}

}  // namespace quillmarch::host::deck
