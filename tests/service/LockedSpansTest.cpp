#include "service/engines/LockedSpans.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmarch::service {

namespace {
std::vector<std::string> Locked(const std::string& text) {
  std::vector<std::string> out;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    out.push_back(text.substr(span.begin, span.end - span.begin));
  }
  return out;
}
using Strings = std::vector<std::string>;
}  // namespace

TEST(LockedSpans, PlaceholdersAreFoundInEitherCaseAndWithAnEmptyMiddle) {
  EXPECT_EQ(Locked("see [[QM_REF_12]], [[qm_ref_1]] and [[QM__1]]"),
            (Strings{"[[QM_REF_12]]", "[[qm_ref_1]]", "[[QM__1]]"}));
  EXPECT_EQ(CountLockedPlaceholders("[[QM_a_1]][[QM_b_2]] www.example.com"), 2u);
}

TEST(LockedSpans, WhatOnlyLooksLikeAPlaceholderIsNone) {
  EXPECT_EQ(
      CountLockedPlaceholders("[[QM_REF_]] [[QM_REF_x]] [[QM_1]] [QM_R_1] [[QM_R_1] [[QX_R_1]]"),
      0u);
  EXPECT_EQ(CountLockedPlaceholders("[[QM_a b_1]] [[QM_REF_1"), 0u);
}

TEST(LockedSpans, WebAddressesEndBeforeTheSentencesPunctuation) {
  EXPECT_EQ(Locked("Read https://example.com/a_b?c=d#e. Or (www.example.org/x), now"),
            (Strings{"https://example.com/a_b?c=d#e", "www.example.org/x"}));
  EXPECT_EQ(Locked("看https://example.com/看"), Strings{"https://example.com/"});
}

TEST(LockedSpans, ASchemeAloneOrInsideAWordIsNoAddress) {
  EXPECT_TRUE(Locked("https:// and awww.ful and http").empty());
}

TEST(LockedSpans, MailAddressesAreFoundAroundTheirAtSign) {
  EXPECT_EQ(Locked("Mail jane.doe+x@mail.example.com."), Strings{"jane.doe+x@mail.example.com"});
  EXPECT_TRUE(Locked("3 @ 4, @home, me@, a@b, a@.com, a@b.").empty());
}

TEST(LockedSpans, AnAddressDirectlyBehindAPlaceholderIsCutThere) {
  EXPECT_EQ(Locked("[[QM_A_1]]www.example.com"), (Strings{"[[QM_A_1]]", "www.example.com"}));
}

}  // namespace quillmarch::service
