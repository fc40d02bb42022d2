#include "host/cli/SelectOption.h"

#include <gtest/gtest.h>

namespace quillmarch::host {

namespace {

using Kind = SelectOption::Kind;

SelectOption Read(const std::vector<std::string>& values) {
  SelectOption select;
  std::string error;
  EXPECT_TRUE(ReadSelect(values, select, error)) << error;
  return select;
}

std::string ErrorOf(const std::vector<std::string>& values) {
  SelectOption select;
  std::string error;
  EXPECT_FALSE(ReadSelect(values, select, error));
  return error;
}

TEST(SelectOption, WithoutAValueNothingIsSelected) {
  EXPECT_EQ(Read({}).kind, Kind::kNothing);
}

TEST(SelectOption, SlidesKeepTheirOrder) {
  const SelectOption select = Read({"7,2-4", "1"});
  EXPECT_EQ(select.kind, Kind::kSlides);
  EXPECT_EQ(select.slides, (std::vector<std::int32_t>{7, 2, 3, 4, 1}));
}

TEST(SelectOption, ShapesAreNamedOrNumbered) {
  const SelectOption select = Read({"3:Title 1,3:#2", "3:#4/1"});
  EXPECT_EQ(select.kind, Kind::kShapes);
  EXPECT_EQ(select.slide, 3);
  ASSERT_EQ(select.shapes.size(), 3U);
  EXPECT_EQ(select.shapes[0].name, "Title 1");
  EXPECT_EQ(select.shapes[1].path, (std::vector<std::int32_t>{2}));
  EXPECT_EQ(select.shapes[2].path, (std::vector<std::int32_t>{4, 1}));
}

TEST(SelectOption, CommasAndColonsWithinANameBelongToIt) {
  const SelectOption select = Read({"3:Sales, 2024: all,3:b:c", "3:d,5"});
  ASSERT_EQ(select.shapes.size(), 3U);
  EXPECT_EQ(select.shapes[0].name, "Sales, 2024: all");
  EXPECT_EQ(select.shapes[1].name, "b:c");
  EXPECT_EQ(select.shapes[2].name, "d,5");
}

TEST(SelectOption, APieceOfTextIsOneShapeStartAndLength) {
  for (const char* value : {"3:#2:5+12", "3:Title: 1:5+12"}) {
    const SelectOption select = Read({value});
    EXPECT_EQ(select.kind, Kind::kText) << value;
    EXPECT_EQ(select.slide, 3);
    EXPECT_EQ(select.start, 5);
    EXPECT_EQ(select.length, 12);
    ASSERT_EQ(select.shapes.size(), 1U);
  }
  EXPECT_EQ(Read({"3:Title: 1:5+12"}).shapes[0].name, "Title: 1");
  EXPECT_EQ(Read({"3:a:0+12"}).shapes[0].name, "a:0+12");
}

TEST(SelectOption, WhatNoHostCouldSelectIsASentence) {
  EXPECT_EQ(ErrorOf({"3:#1", "4:#1"}), "shapes on several slides cannot be selected together");
  EXPECT_EQ(ErrorOf({"2,3:#1"}), "slides and shapes cannot be selected together");
  EXPECT_EQ(ErrorOf({"3:#1", "2"}), "slides and shapes cannot be selected together");
  EXPECT_EQ(ErrorOf({"3:#1:1+2", "3:#2"}), "part of a text can be selected only by itself");
  EXPECT_EQ(ErrorOf({"3:#1,3:#2:1+2"}), "part of a text can be selected only by itself");
}

TEST(SelectOption, WhatIsNotUnderstoodIsShownPlain) {
  for (const char* value : {"", "x", "0", "1-", "-1", "7-5", "2,,3", "2 ,3", "1000001", "3:", "3:#",
                            "3:#0", "3:#1/", "3:#1/0", "3:#x", "0:a", "99999999999:a", "+3"}) {
    EXPECT_EQ(ErrorOf({value}).rfind("--select takes slides", 0), 0U) << value;
  }
  EXPECT_EQ(ErrorOf({"\x1b[2J"}).find('\x1b'), std::string::npos);
}

}  // namespace

}  // namespace quillmarch::host
