#include <windows.h>

#include <wctype.h>

#include <cstdio>
#include <set>

#include "foundation/text/CharClass.h"
#include "gtest/gtest.h"

namespace quillmarch::addin {

namespace {

using Units = std::set<unsigned>;

WORD SystemClass(wchar_t unit) {
  WORD type = 0;
  GetStringTypeW(CT_CTYPE1, &unit, 1, &type);
  return type;
}

// Prints and gives the units for which the two answers differ.
template <typename Ours, typename Theirs>
Units Differences(const char* what, Ours ours, Theirs theirs) {
  Units units;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    if (ours(static_cast<char16_t>(unit)) != theirs(static_cast<wchar_t>(unit))) units.insert(unit);
  }
  std::printf("%s: %zu of 65536 units differ:", what, units.size());
  for (const unsigned unit : units) std::printf(" U+%04X", unit);
  std::printf("\n");
  return units;
}

}  // namespace

TEST(CharClassOnWindows, EveryUnitIsClassedAsTheSystemsOwnTableDoes) {
  EXPECT_EQ(Units(), Differences("C1_ALPHA", IsAlpha,
                                 [](wchar_t c) { return (SystemClass(c) & C1_ALPHA) != 0; }));
  EXPECT_EQ(Units(), Differences("C1_SPACE", IsSpace,
                                 [](wchar_t c) { return (SystemClass(c) & C1_SPACE) != 0; }));
  EXPECT_EQ(Units(), Differences("C1_DIGIT", IsDigit,
                                 [](wchar_t c) { return (SystemClass(c) & C1_DIGIT) != 0; }));
}

// The C library that is linked here (msvcrt.dll) answers for the first 256 units from a list of its
// own, older than the system's table, in which the three letters outside the alphabet and the
// next-line control are missing. Today's library (ucrtbase.dll) has them, as the system's table
// has, and so have we.
TEST(CharClassOnWindows, TheOldLibraryDiffersInFourLatinUnitsOnly) {
  EXPECT_EQ(Units({0xAA, 0xB5, 0xBA}),
            Differences("iswalpha", IsAlpha, [](wchar_t c) { return iswalpha(c) != 0; }));
  EXPECT_EQ(Units({0x85}),
            Differences("iswspace", IsSpace, [](wchar_t c) { return iswspace(c) != 0; }));
  EXPECT_EQ(Units(), Differences("iswdigit", IsDigit, [](wchar_t c) { return iswdigit(c) != 0; }));
  EXPECT_EQ(Units({0xAA, 0xB5, 0xBA}),
            Differences("iswalnum", IsAlnum, [](wchar_t c) { return iswalnum(c) != 0; }));
}

}  // namespace quillmarch::addin
