#include "run/collect/FrameCollapse.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

FrameVerdict Judge(const std::vector<Wide>& paragraphs, const UnitLocator& locator = {}) {
  return JudgeFrame(paragraphs, locator);
}

TEST(FrameCollapse, TwoShortChineseParagraphsCollapse) {
  EXPECT_EQ(Judge({u"年度", u"计划"}), FrameVerdict::kCollapsed);
}

TEST(FrameCollapse, DigitsAndBlanksMayStandAmongTheCharacters) {
  EXPECT_EQ(Judge({u"2024 年", u"计 划3"}), FrameVerdict::kCollapsed);
}

TEST(FrameCollapse, JapaneseAndKoreanCollapseToo) {
  EXPECT_EQ(Judge({u"ひらがな", u"カタカナ"}), FrameVerdict::kCollapsed);
  EXPECT_EQ(Judge({u"한국", u"계획"}), FrameVerdict::kCollapsed);
}

TEST(FrameCollapse, ASingleLatinLetterRulesItOut) {
  EXPECT_EQ(Judge({u"年度A", u"计划"}), FrameVerdict::kSeparate);
  EXPECT_EQ(Judge({u"Plan", u"Year"}), FrameVerdict::kSeparate);
}

TEST(FrameCollapse, OneParagraphNeverCollapses) {
  EXPECT_EQ(Judge({u"年度计划"}), FrameVerdict::kSeparate);
}

TEST(FrameCollapse, EachPunctuationCharacterRulesItOut) {
  for (const char16_t mark : Wide(u"，。！？；：、,.!?;:")) {
    EXPECT_EQ(Judge({u"年度" + Wide(1, mark), u"计划"}), FrameVerdict::kSeparate)
        << ToUtf8(Wide(1, mark));
  }
}

TEST(FrameCollapse, ThirtyCharactersCollapseAndThirtyOneDoNot) {
  EXPECT_EQ(Judge({Wide(15, u'年'), Wide(15, u'度')}), FrameVerdict::kCollapsed);
  EXPECT_EQ(Judge({Wide(15, u'年'), Wide(16, u'度')}), FrameVerdict::kSeparate);
}

TEST(FrameCollapse, AnEmptyParagraphLeavesTheFrameMarked) {
  EXPECT_EQ(Judge({u"年度", u"", u"计划"}), FrameVerdict::kMarked);
}

TEST(FrameCollapse, AParagraphOfDigitsOnlyLeavesTheFrameMarked) {
  EXPECT_EQ(Judge({u"年度计划", u"2024"}), FrameVerdict::kMarked);
}

TEST(FrameCollapse, EmptyParagraphsAloneAreNoPhrase) {
  EXPECT_EQ(Judge({u"", u""}), FrameVerdict::kSeparate);
}

TEST(FrameCollapse, OnlyAShapeOfASlideMayCollapse) {
  const std::vector<Wide> phrase = {u"年度", u"计划"};
  UnitLocator cell;
  cell.kind = UnitKind::kCell;
  cell.row = 1;
  cell.column = 1;
  UnitLocator notes;
  notes.kind = UnitKind::kNotes;
  UnitLocator selectedOnNotes;
  selectedOnNotes.onNotes = 1;
  UnitLocator inCell;
  inCell.row = 1;
  for (const UnitLocator& locator : {cell, notes, selectedOnNotes, inCell}) {
    EXPECT_EQ(Judge(phrase, locator), FrameVerdict::kSeparate);
  }
}

}  // namespace

}  // namespace quillmarch::addin
