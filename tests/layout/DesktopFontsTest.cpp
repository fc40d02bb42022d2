#include "host/layout/DesktopFonts.h"

#include <gtest/gtest.h>

#include "host/layout/FontBook.h"

namespace quillmarch::host {

namespace {

TEST(DesktopFonts, EveryFamilyThatIsListedCanBeHad) {
  layout::FontBook book;
  const std::vector<Wide> names = DesktopFonts().FamilyNames();
  EXPECT_FALSE(names.empty());
  for (const Wide& name : names) EXPECT_TRUE(book.Has(ToUtf8(name))) << ToUtf8(name);
}

}  // namespace

}  // namespace quillmarch::host
