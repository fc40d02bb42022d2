#include "bench/layout/RecordText.h"

#include <unicode/unistr.h>

namespace quillmarch::host {

namespace {

using nlohmann::json;

std::u16string WideOf(const std::string& utf8) {
  icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
  return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

layout::Spacing SpacingOf(const json& record) {
  layout::Spacing spacing;
  spacing.unit = record.at("unit") == "points" ? layout::Spacing::Unit::kPoints
                                               : layout::Spacing::Unit::kShare;
  spacing.value = record.at("value");
  return spacing;
}

layout::Spacing PointsOf(double points) {
  return {layout::Spacing::Unit::kPoints, points};
}

layout::LayoutRun RunOf(const json& record) {
  layout::LayoutRun run;
  run.text = WideOf(record.at("text"));
  run.fonts.latin = record.at("latin");
  run.fonts.eastAsian = record.at("eastAsian");
  run.fonts.complexScript = record.at("complex");
  run.language = record.at("language");
  run.size = record.at("size");
  run.spacing = record.at("spacing");
  run.baseline = record.at("baseline");
  run.bold = record.at("bold");
  run.italic = record.at("italic");
  run.kerning = record.at("kerning");
  run.caps = static_cast<layout::Caps>(record.at("caps").get<int>());
  return run;
}

layout::LayoutParagraph ParagraphOf(const json& record) {
  layout::LayoutParagraph paragraph;
  for (const json& run : record.at("runs")) paragraph.runs.push_back(RunOf(run));
  paragraph.mark = RunOf(record.at("mark"));
  paragraph.alignment = static_cast<layout::Alignment>(record.at("alignment").get<int>());
  paragraph.rightToLeft = record.at("rightToLeft");
  paragraph.hangingPunctuation = record.at("hangingPunctuation");
  paragraph.marginStart = record.at("marginStart");
  paragraph.marginEnd = record.at("marginEnd");
  paragraph.indent = record.at("indent");
  paragraph.bullet.text = WideOf(record.at("bullet"));
  paragraph.bullet.font = record.at("bulletFont");
  paragraph.bullet.size = {layout::Spacing::Unit::kShare, record.at("bulletSize")};
  paragraph.lineSpacing = SpacingOf(record.at("lineSpacing"));
  paragraph.before = PointsOf(record.at("before"));
  paragraph.after = PointsOf(record.at("after"));
  for (const json& tab : record.at("tabs")) {
    paragraph.tabs.push_back(
        {tab.at("position"), static_cast<layout::TabAlignment>(tab.at("alignment").get<int>())});
  }
  return paragraph;
}

}  // namespace

layout::LayoutFrame FrameOf(const json& record) {
  layout::LayoutFrame frame;
  frame.width = record.at("width");
  frame.height = record.at("height");
  frame.insetLeft = record.at("insets").at(0);
  frame.insetTop = record.at("insets").at(1);
  frame.insetRight = record.at("insets").at(2);
  frame.insetBottom = record.at("insets").at(3);
  frame.wrap = record.at("wrap");
  frame.columns = record.at("columns");
  frame.columnSpacing = record.at("columnSpacing");
  frame.defaultTab = record.at("defaultTab");
  frame.lineHeight =
      record.value("ofSize", true) ? layout::LineHeight::kOfSize : layout::LineHeight::kOfFont;
  for (const json& paragraph : record.at("paragraphs")) {
    frame.paragraphs.push_back(ParagraphOf(paragraph));
  }
  return frame;
}

}  // namespace quillmarch::host
