// Any bytes as a chart part: what passes the check of well-formedness is read, every title, name,
// category and label is put, and the caches follow a sheet that says something else. The part that
// comes of it must be well-formed and read back as it was left.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/deck/chart/ChartPart.h"
#include "host/package/xml/XmlCheck.h"

namespace quillmarch::host::deck {

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void Visit(ChartPart& part, const Wide& text) {
  if (part.PutTitle(text)) Require(part.Title().text == text);
  for (int group = 1; group <= 2; ++group) {
    for (int type = 1; type <= 3; ++type) {
      part.HasAxis(type, group);
      if (part.PutAxisTitle(type, group, text)) Require(part.AxisTitle(type, group).text == text);
      if (part.PutUnitLabel(type, group, text)) Require(part.UnitLabel(type, group).text == text);
    }
  }
  for (std::size_t series = 0; series < part.SeriesCount(); ++series) {
    part.Formula(series);
    part.Values(series);
    for (const ChartDataPoint& point : part.Categories(series).points) {
      part.PutCategory(series, point.index, text);
    }
    for (const SeriesLabel& label : part.Labels(series)) {
      part.LabelText(series, label);
      part.PutLabelText(label, text);
    }
    part.PutSeriesName(series, text);
    Require(part.SeriesNameText(series) == text);
  }
}

void Commit(ChartPart& part) {
  Require(part.Commit());
  Require(!part.Edited());
  Require(CheckXml(part.Bytes()).fault == XmlFault::kNone);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (CheckXml(bytes).fault != XmlFault::kNone) return 0;
  const auto part = ChartPart::Parse(bytes);
  if (!part) return 0;
  Visit(*part, u"a<\u00E9&");
  Commit(*part);
  Visit(*part, u"two\rlines");
  Commit(*part);
  std::size_t asked = 0;
  const SheetReader sheet = [&](const Wide& formula, bool, SheetBlock& block) {
    // What the reference says decides the block's form.
    block.rows = static_cast<std::uint32_t>(formula.size() % 5);
    block.columns = static_cast<std::uint32_t>(formula.size() % 3);
    for (std::uint32_t i = 0; i < block.rows * block.columns; ++i) {
      const bool number = (i + formula.size()) % 4 != 0;
      block.points.push_back({i % 7 != 3, number, std::to_string(i), Decimal(i) + u"<"});
    }
    return ++asked < 1000;
  };
  part->Refresh(sheet);
  Commit(*part);
  const std::string once = part->Bytes();
  asked = 0;
  part->Refresh(sheet);
  Require(asked >= 1000 || part->Bytes() == once);
  return 0;
}

}  // namespace quillmarch::host::deck
