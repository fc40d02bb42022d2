#include "foundation/text/Result.h"

#include <memory>
#include <utility>

#include "gtest/gtest.h"

namespace quillmarch::addin {
namespace {

Result<int> Half(int number) {
  if (number % 2 != 0) return Error{ErrorCode::kBadArgument, "An odd number has no half."};
  return number / 2;
}

Result<std::unique_ptr<int>> Boxed(int number) {
  Result<int> half = Half(number);
  if (!half) return std::move(half).error();
  return std::make_unique<int>(*half);
}

Result<void> OnlyEven(int number) {
  const Result<int> half = Half(number);
  if (!half) return half.error();
  return {};
}

}  // namespace

TEST(Result, ASuccessHoldsTheValueAndIsTrue) {
  const Result<int> half = Half(6);
  ASSERT_TRUE(half);
  EXPECT_TRUE(half.ok());
  EXPECT_EQ(3, *half);
  EXPECT_EQ(3, half.value());
}

TEST(Result, AFailureIsFalseAndHoldsCodeAndWords) {
  const Result<int> half = Half(7);
  ASSERT_FALSE(half);
  EXPECT_EQ(ErrorCode::kBadArgument, half.error().code);
  EXPECT_EQ("An odd number has no half.", half.error().words);
}

TEST(Result, AnErrorPassesUnchangedFromOneKindOfResultToAnother) {
  const Result<std::unique_ptr<int>> boxed = Boxed(7);
  ASSERT_FALSE(boxed);
  EXPECT_EQ((Error{ErrorCode::kBadArgument, "An odd number has no half."}), boxed.error());
}

TEST(Result, AValueThatOnlyMovesIsTakenOut) {
  Result<std::unique_ptr<int>> boxed = Boxed(8);
  ASSERT_TRUE(boxed);
  const std::unique_ptr<int> taken = *std::move(boxed);
  ASSERT_NE(nullptr, taken);
  EXPECT_EQ(4, *taken);
}

TEST(Result, AZeroAnEmptyTextAndANullPointerAreValues) {
  EXPECT_TRUE(Result<int>(0));
  EXPECT_TRUE(Result<std::string>(std::string()));
  EXPECT_TRUE(Result<int*>(nullptr));
}

TEST(Result, AResultOfTextTellsTextFromError) {
  EXPECT_TRUE(Result<std::string>("words"));
  EXPECT_FALSE(Result<std::string>(Error{ErrorCode::kFailed, "words"}));
}

TEST(Result, WithoutAValueEmptyBracesAreTheSuccess) {
  EXPECT_TRUE(OnlyEven(2));
  const Result<void> odd = OnlyEven(3);
  ASSERT_FALSE(odd);
  EXPECT_EQ(ErrorCode::kBadArgument, odd.error().code);
}

}  // namespace quillmarch::addin
