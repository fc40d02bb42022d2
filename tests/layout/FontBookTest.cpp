#include "host/layout/FontBook.h"

#include "gtest/gtest.h"

namespace quillmarch::host::layout {

namespace {

FontWish Wish(const char* family) {
  return {family, "en", false, false};
}

TEST(FontBook, FontsOfTheSameMetricsReplaceThoseThatAreNotFree) {
  FontBook book;
  EXPECT_EQ("Carlito", book.Find(Wish("Calibri")).family);
  EXPECT_EQ("Caladea", book.Find(Wish("Cambria")).family);
  EXPECT_EQ("Liberation Sans", book.Find(Wish("Arial")).family);
  EXPECT_EQ("Liberation Serif", book.Find(Wish("Times New Roman")).family);
  EXPECT_EQ("Liberation Mono", book.Find(Wish("Courier New")).family);
}

TEST(FontBook, OnlyInstalledFontsAndThoseOfTheSameMetricsCountAsThere) {
  FontBook book;
  EXPECT_TRUE(book.Has("Liberation Sans"));
  EXPECT_TRUE(book.Has("liberation sans"));
  EXPECT_TRUE(book.Has("Calibri"));
  EXPECT_FALSE(book.Has("No Such Font At All"));
}

TEST(FontBook, BoldAndItalicAreFacesOfTheirOwn) {
  FontBook book;
  const FontFace& regular = book.Find({"Arial", "en", false, false});
  const FontFace& bold = book.Find({"Arial", "en", true, false});
  const FontFace& italic = book.Find({"Arial", "en", false, true});
  EXPECT_NE(&regular, &bold);
  EXPECT_NE(&regular, &italic);
  EXPECT_NE(regular.id, bold.id);
}

TEST(FontBook, TheSameWishGivesTheSameFace) {
  FontBook book;
  EXPECT_EQ(&book.Find(Wish("Calibri")), &book.Find(Wish("Calibri")));
  EXPECT_EQ(&book.Find(Wish("Calibri")), &book.Find(Wish("Carlito")));
}

TEST(FontBook, ACharacterThatTheFaceLacksIsFoundElsewhere) {
  FontBook book;
  EXPECT_FALSE(book.Find(Wish("Arial")).Shows(U'中'));
  const FontFace& face = book.FindFor({"Arial", "zh-cn", false, false}, U'中');
  EXPECT_TRUE(face.Shows(U'中'));
  EXPECT_EQ("Liberation Sans", book.FindFor(Wish("Arial"), U'a').family);
}

TEST(FontBook, ACharacterThatNoFontHasStaysInTheWishedFace) {
  FontBook book;
  EXPECT_EQ(&book.Find(Wish("Arial")), &book.FindFor(Wish("Arial"), 0x10FFFD));
}

TEST(FontBook, HeightsAreSharesOfTheSize) {
  FontBook book;
  const FontFace& face = book.Find(Wish("Arial"));
  EXPECT_NEAR(0.905, face.ascent, 0.001);
  EXPECT_NEAR(0.212, face.descent, 0.001);
}

}  // namespace
}  // namespace quillmarch::host::layout
