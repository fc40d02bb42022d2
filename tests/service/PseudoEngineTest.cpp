#include "service/engines/PseudoEngine.h"

#include <gtest/gtest.h>

#include "service/Utf8.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

TEST(PseudoEngine, ATextComesBackBetweenItsBrackets) {
  EXPECT_EQ(PseudoTranslate("Plan", 1), "⟦Plan⟧");
  EXPECT_EQ(PseudoTranslate("", 1), "⟦⟧");
  EXPECT_EQ(PseudoTranslate(" a\vb ", 1), "⟦ a\vb ⟧");
}

TEST(PseudoEngine, GrowthRepeatsTheTextsOwnWordsToTheExactLength) {
  EXPECT_EQ(PseudoTranslate("one two", 2), "⟦one two one tw⟧");
  EXPECT_EQ(PseudoTranslate("Plan", 1.5), "⟦Plan P⟧");
  EXPECT_EQ(PseudoTranslate("one two", 3), "⟦one two one two one t⟧");
}

TEST(PseudoEngine, GrowthNeverEndsInABlank) {
  EXPECT_EQ(PseudoTranslate("Plan", 1.25), "⟦PlanP⟧");
  for (const double growth : {1.1, 1.2, 1.3, 1.7, 2.0, 2.3}) {
    const std::string text = PseudoTranslate("a bc def ghij", growth);
    EXPECT_NE(text[text.size() - 4], ' ') << text;
  }
}

TEST(PseudoEngine, TheBlanksAroundATextStayAndDoNotGrow) {
  EXPECT_EQ(PseudoTranslate("  Plan\n", 2), "⟦  Plan Pla\n⟧");
  EXPECT_EQ(PseudoTranslate("   ", 3), "⟦   ⟧");
}

TEST(PseudoEngine, NoLineBreakIsAdded) {
  EXPECT_EQ(PseudoTranslate("one\vtwo", 2), "⟦one\vtwo one tw⟧");
}

TEST(PseudoEngine, ScriptsWithoutBlanksRepeatTheirCharacters) {
  EXPECT_EQ(PseudoTranslate("计划", 2), "⟦计划计划⟧");
  EXPECT_EQ(PseudoTranslate("แผน", 2), "⟦แผนแผน⟧");
}

TEST(PseudoEngine, LengthIsCountedInCharacters) {
  EXPECT_EQ(PseudoTranslate("Ключ", 2), "⟦Ключ Клю⟧");
}

TEST(PseudoEngine, LockedPiecesAreNotRepeated) {
  const std::string text = PseudoTranslate("See [[QM_REF_1]] at www.example.com", 3);
  EXPECT_EQ(CountLockedPlaceholders(text), 1u) << text;
  EXPECT_EQ(FindLockedSpans(text).size(), 2u) << text;
  EXPECT_EQ(PseudoTranslate("[[QM_REF_1]]", 3), "⟦[[QM_REF_1]]⟧");
}

}  // namespace quillmarch::service
