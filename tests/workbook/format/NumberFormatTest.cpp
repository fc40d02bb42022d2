#include "host/workbook/format/NumberFormat.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmarch::host::workbook {

namespace {

std::string Shown(const std::string& code, double value, bool date1904 = false) {
  return NumberFormat(code).Show(value, date1904);
}

}  // namespace

TEST(NumberFormat, GeneralShowsUpToElevenCharacters) {
  EXPECT_EQ(Shown("General", 0), "0");
  EXPECT_EQ(Shown("General", 4.3), "4.3");
  EXPECT_EQ(Shown("General", -1234.5), "-1234.5");
  EXPECT_EQ(Shown("General", 0.1 + 0.2), "0.3");
  EXPECT_EQ(Shown("General", 1.0 / 3), "0.333333333");
  EXPECT_EQ(Shown("General", 1234567.891234), "1234567.891");
  EXPECT_EQ(Shown("General", 12345678901), "12345678901");
  EXPECT_EQ(Shown("General", 123456789012), "1.23457E+11");
  EXPECT_EQ(Shown("General", 1e11), "1E+11");
  EXPECT_EQ(Shown("General", 0.00001), "0.00001");
  EXPECT_EQ(Shown("General", 0.0000123456), "1.23456E-05");
  EXPECT_EQ(Shown("General", 1e-20), "1E-20");
  EXPECT_EQ(Shown("General", 1.5e300), "1.5E+300");
}

TEST(NumberFormat, PlacesRoundHalvesAwayFromZero) {
  EXPECT_EQ(Shown("0", 2.5), "3");
  EXPECT_EQ(Shown("0", -2.5), "-3");
  EXPECT_EQ(Shown("0.00", 1.005), "1.01");
  EXPECT_EQ(Shown("0.00", 9.999), "10.00");
  EXPECT_EQ(Shown("0000", 42), "0042");
  EXPECT_EQ(Shown("#.##", 5), "5.");
  EXPECT_EQ(Shown("#.##", 0.5), ".5");
  EXPECT_EQ(Shown("0.0#", 1.5), "1.5");
  EXPECT_EQ(Shown("0.??", 1.5), "1.5 ");
  EXPECT_EQ(Shown("#", 0), "");
}

TEST(NumberFormat, CommasGroupDigitsOrDivideByThousands) {
  EXPECT_EQ(Shown("#,##0", 1234567), "1,234,567");
  EXPECT_EQ(Shown("#,##0", 999), "999");
  EXPECT_EQ(Shown("#,##0", -1000), "-1,000");
  EXPECT_EQ(Shown("#,##0.00", 1234.5), "1,234.50");
  EXPECT_EQ(Shown("0,000", 12), "0,012");
  EXPECT_EQ(Shown("0,", 1234567), "1235");
  EXPECT_EQ(Shown("0.0,,\"M\"", 1234567), "1.2M");
}

TEST(NumberFormat, PercentAndScientific) {
  EXPECT_EQ(Shown("0%", 0.256), "26%");
  EXPECT_EQ(Shown("0.00%", 0.12345), "12.35%");
  EXPECT_EQ(Shown("0.00E+00", 12345), "1.23E+04");
  EXPECT_EQ(Shown("0.00E+00", 0.00012), "1.20E-04");
  EXPECT_EQ(Shown("0.0E-0", 12345), "1.2E4");
  EXPECT_EQ(Shown("##0.0E+0", 123456), "123.5E+3");
  EXPECT_EQ(Shown("##0.0E+0", 0.0123), "12.3E-3");
  EXPECT_EQ(Shown("0.0E+0", 9.99), "1.0E+1");
  EXPECT_EQ(Shown("0.00E+00", 0), "0.00E+00");
}

TEST(NumberFormat, SectionsArePositiveNegativeZeroAndText) {
  const std::string code = "0.0;(0.0);\"none\";\"<\"@\">\"";
  EXPECT_EQ(Shown(code, 1.25), "1.3");
  EXPECT_EQ(Shown(code, -1.25), "(1.3)");
  EXPECT_EQ(Shown(code, 0), "none");
  EXPECT_EQ(NumberFormat(code).ShowText("word"), "<word>");
  EXPECT_EQ(Shown("0;-0", 0), "0");
  EXPECT_EQ(Shown(";;;", 5), "");
  EXPECT_EQ(Shown(";;;", -5), "");
  EXPECT_EQ(NumberFormat(";;;").ShowText("word"), "");
  EXPECT_EQ(NumberFormat("0.00").ShowText("word"), "word");
  EXPECT_EQ(NumberFormat("@").ShowText("word"), "word");
  EXPECT_EQ(Shown("@", 12.5), "12.5");
}

TEST(NumberFormat, ConditionsChooseTheSection) {
  const std::string code = "[=0]0\\ \\ ;[<0.05]\\ \\ \"n.  \";0.00\\ \\ ;@\\ \\ ";
  EXPECT_EQ(Shown(code, 0), "0  ");
  EXPECT_EQ(Shown(code, 0.01), "  n.  ");
  EXPECT_EQ(Shown(code, 3.456), "3.46  ");
  EXPECT_EQ(NumberFormat(code).ShowText("x"), "x  ");
  EXPECT_EQ(Shown("[>=1000]0,\"K\";0", 12345), "12K");
  EXPECT_EQ(Shown("[>=1000]0,\"K\";0", 12), "12");
  EXPECT_EQ(Shown("[>100]\"high\"", 5), "5");
}

TEST(NumberFormat, LiteralsColoursAndCurrencies) {
  EXPECT_EQ(Shown("#,##0\\ \"\u20AC\";[Red]\\-#,##0\\ \"\u20AC\"", -1234), "-1,234 \u20AC");
  EXPECT_EQ(Shown("[$\u20AC-407] #,##0", 5), "\u20AC 5");
  EXPECT_EQ(Shown("[$-409]0", 5), "5");
  EXPECT_EQ(Shown("$#,##0_);\\($#,##0\\)", 5), "$5 ");
  EXPECT_EQ(Shown("$#,##0_);\\($#,##0\\)", -5), "($5)");
  EXPECT_EQ(Shown("000-00-0000", 123456789), "123-45-6789");
  EXPECT_EQ(Shown("0\"g\"", 5), "5g");
  EXPECT_TRUE(NumberFormat("$#,##0").IsCurrency());
  EXPECT_FALSE(NumberFormat("[$-409]0").IsCurrency());
}

TEST(NumberFormat, Fractions) {
  EXPECT_EQ(Shown("# ?/?", 1.25), "1 1/4");
  EXPECT_EQ(Shown("# ?/?", 0.5), " 1/2");
  EXPECT_EQ(Shown("# ?"
                  "?/?"
                  "?",
                  3.14),
            "3  7/50");
  EXPECT_EQ(Shown("# ?/?", 2), "2    ");
  EXPECT_EQ(Shown("# ?/8", 1.25), "1 2/8");
  EXPECT_EQ(Shown("?/?", 1.5), "3/2");
}

TEST(NumberFormat, DatesInBothSystems) {
  EXPECT_EQ(Shown("m/d/yyyy", 37261), "1/5/2002");
  EXPECT_EQ(Shown("dd.mm.yy", 37261), "05.01.02");
  EXPECT_EQ(Shown("d-mmm-yy", 37261), "5-Jan-02");
  EXPECT_EQ(Shown("dddd, mmmm d", 37261), "Saturday, January 5");
  EXPECT_EQ(Shown("ddd mmmmm", 37261), "Sat J");
  EXPECT_EQ(Shown("yyyy\"\u5E74\"m\"\u6708\"", 37261),
            "2002\u5E74"
            "1\u6708");
  EXPECT_EQ(Shown("yyyy-mm-dd", 59), "1900-02-28");
  EXPECT_EQ(Shown("yyyy-mm-dd", 60), "1900-02-29");
  EXPECT_EQ(Shown("yyyy-mm-dd", 61), "1900-03-01");
  EXPECT_EQ(Shown("yyyy-mm-dd", 0), "1900-01-00");
  EXPECT_EQ(Shown("yyyy-mm-dd", 0, true), "1904-01-01");
  EXPECT_EQ(Shown("yyyy-mm-dd", 35799, true), "2002-01-05");
  EXPECT_EQ(Shown("ddd", 35799, true), "Sat");
  EXPECT_EQ(Shown("m/d/yyyy", -1), "########");
  EXPECT_EQ(Shown("m/d/yyyy", 2958465), "12/31/9999");
  EXPECT_EQ(Shown("m/d/yyyy", 2958466), "########");
}

TEST(NumberFormat, TimesAndElapsedTimes) {
  EXPECT_EQ(Shown("h:mm", 0.75), "18:00");
  EXPECT_EQ(Shown("h:mm AM/PM", 0.75), "6:00 PM");
  EXPECT_EQ(Shown("h AM/PM", 0), "12 AM");
  EXPECT_EQ(Shown("hh:mm:ss", 0.5 + 61.0 / 86400), "12:01:01");
  EXPECT_EQ(Shown("mm:ss.0", 61.25 / 86400), "01:01.3");
  EXPECT_EQ(Shown("[h]:mm", 1.5), "36:00");
  EXPECT_EQ(Shown("[mm]:ss", 0.5), "720:00");
  EXPECT_EQ(Shown("m/d/yyyy h:mm", 37261.5), "1/5/2002 12:00");
  EXPECT_EQ(Shown("yyyy-mm-dd hh:mm:ss", 37261.999999), "2002-01-06 00:00:00");
  EXPECT_TRUE(NumberFormat("h:mm").IsDate());
  EXPECT_FALSE(NumberFormat("0.00\"h\"").IsDate());
  EXPECT_FALSE(NumberFormat("[Red]0").IsDate());
}

TEST(NumberFormat, ACodeThatNobodyCanReadShowsSomething) {
  EXPECT_EQ(Shown("", 5), "5");
  EXPECT_EQ(Shown("\"open", 5), "open");
  EXPECT_EQ(Shown("[open", 5), "[open");
  EXPECT_EQ(Shown("\\", 5), "");
  EXPECT_EQ(Shown(std::string(5000, '0'), 5), "5");
}

TEST(NumberFormat, BuiltInFormatsGoByNumber) {
  EXPECT_EQ(BuiltInFormat(0), "General");
  EXPECT_EQ(BuiltInFormat(10), "0.00%");
  EXPECT_EQ(BuiltInFormat(14), "m/d/yyyy");
  EXPECT_EQ(BuiltInFormat(49), "@");
  EXPECT_EQ(BuiltInFormat(163), "");
  EXPECT_EQ(Shown(std::string(BuiltInFormat(44)), 1234.5), " $1,234.50 ");
  EXPECT_EQ(Shown(std::string(BuiltInFormat(41)), -5), " (5)");
}

}  // namespace quillmarch::host::workbook
