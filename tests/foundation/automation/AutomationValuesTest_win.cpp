#include <windows.h>

#include <oleauto.h>

#include <limits>

#include "foundation/automation/Automation.h"
#include "foundation/system/WinText.h"
#include "gtest/gtest.h"

namespace quillmarch::addin {

namespace {

// What the system's own conversion makes of a number, in no locale.
Wide SystemText(double number, bool single) {
  VARIANT from{};
  if (single) {
    from.vt = VT_R4;
    from.fltVal = static_cast<float>(number);
  } else {
    from.vt = VT_R8;
    from.dblVal = number;
  }
  VARIANT to{};
  const HRESULT code = VariantChangeTypeEx(&to, &from, LOCALE_INVARIANT, 0, VT_BSTR);
  EXPECT_TRUE(SUCCEEDED(code));
  const Wide text = FromWinText({to.bstrVal, SysStringLen(to.bstrVal)});
  VariantClear(&to);
  return text;
}

}  // namespace

TEST(VariantToTextOnWindows, NumbersReadAsTheSystemWritesThem) {
  for (const double number :
       {0.0, -0.0, 1.0, -1.0, 0.1, 12.5, 1.0 / 3, 2.0 / 3, 100.0, 2024.0, 1e5, 123456.0, 999999.4,
        1234567.0, 0.001, 0.0001, 3.14159265358979, 123456789012.0, -0.5}) {
    EXPECT_EQ(SystemText(number, false), VariantToText(Variant::R8(number))) << number;
    if (number == static_cast<double>(static_cast<float>(number)) || number < 1000) {
      EXPECT_EQ(SystemText(number, true), VariantToText(Variant::R4(static_cast<float>(number))))
          << number;
    }
  }
}

TEST(VariantToWholeOnWindows, RealsAreRoundedAsTheSystemRoundsThem) {
  for (const double number : {0.5, 1.5, 2.5, -0.5, -1.5, -2.5, 2.4999, 2.5001, 2147483646.5}) {
    VARIANT from{};
    from.vt = VT_R8;
    from.dblVal = number;
    VARIANT to{};
    std::int32_t whole = 0;
    const bool ours = VariantToWhole(Variant::R8(number), whole);
    const bool theirs = SUCCEEDED(VariantChangeType(&to, &from, 0, VT_I4));
    ASSERT_EQ(theirs, ours) << number;
    if (theirs) {
      EXPECT_EQ(to.lVal, whole) << number;
    }
  }
}

}  // namespace quillmarch::addin
