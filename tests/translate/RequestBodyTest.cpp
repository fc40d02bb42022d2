#include <gtest/gtest.h>

#include <limits>

#include "foundation/identity/ClientIdentity.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

// The body's end, the same for every request.
Wide Tail() {
  return u",\"clientContext\":" + ClientContextJson() + u"}";
}

TranslateBatchRequest Minimal() {
  TranslateBatchRequest request;
  request.texts = {u"Plan"};
  request.sourceLang = u"auto";
  request.targetLang = u"es";
  return request;
}

TEST(BuildRequestBody, AMinimalRequestHoldsTextsLanguagesAndContextAlone) {
  EXPECT_EQ(BuildRequestBody(Minimal()),
            u"{\"texts\":[\"Plan\"],\"sourceLang\":\"auto\",\"targetLang\":\"es\"" + Tail());
}

TEST(BuildRequestBody, TheContextSaysWhoIsAsking) {
  const Wide body = BuildRequestBody(Minimal());
  EXPECT_NE(body.find(u",\"clientContext\":{\"installId\":\""), Wide::npos);
  EXPECT_NE(body.find(u",\"channel\":\"word\",\"os\":\""), Wide::npos);
}

TEST(BuildRequestBody, AFullRequestHoldsEveryKeyInItsPlace) {
  TranslateBatchRequest request = Minimal();
  request.texts = {u"Plan", u"Net profit"};
  request.unitIds = {u"s1", u"s2"};
  request.usageKind = u"translate_full";
  request.clientProduct = u"ppt";
  request.instruction = u"Be brief";
  request.glossary = {{u"Plan", u"Proyecto", u"noun"}, {u"profit", u"ganancia", u""}};
  request.clientTraceId = u"t-1";
  request.runId = 7;
  request.batchSeq = 3;
  EXPECT_EQ(BuildRequestBody(request),
            u"{\"texts\":[\"Plan\",\"Net profit\"],\"unitIds\":[\"s1\",\"s2\"],"
            u"\"sourceLang\":\"auto\",\"targetLang\":\"es\",\"usageKind\":\"translate_full\","
            u"\"clientProduct\":\"ppt\",\"glossary\":["
            u"{\"source\":\"Plan\",\"target\":\"Proyecto\",\"note\":\"noun\"},"
            u"{\"source\":\"profit\",\"target\":\"ganancia\"}],\"instruction\":\"Be brief\","
            u"\"trace\":{\"clientTraceId\":\"t-1\",\"runId\":\"7\",\"batchSeq\":3}" +
                Tail());
}

TEST(BuildRequestBody, TheTraceHoldsOnlyWhatIsSet) {
  TranslateBatchRequest request = Minimal();
  request.clientTraceId = u"t";
  EXPECT_NE(BuildRequestBody(request).find(u",\"trace\":{\"clientTraceId\":\"t\"},"), Wide::npos);
  request.clientTraceId.clear();
  request.runId = 5;
  EXPECT_NE(BuildRequestBody(request).find(u",\"trace\":{\"runId\":\"5\"},"), Wide::npos);
  request.runId = 0;
  request.batchSeq = 2;
  EXPECT_NE(BuildRequestBody(request).find(u",\"trace\":{\"batchSeq\":2},"), Wide::npos);
  request.batchSeq = 0;
  EXPECT_EQ(BuildRequestBody(request).find(u"\"trace\""), Wide::npos);
}

TEST(BuildRequestBody, ARunIdOf64BitsKeepsEveryDigit) {
  TranslateBatchRequest request = Minimal();
  request.runId = std::numeric_limits<std::uint64_t>::max();
  EXPECT_NE(BuildRequestBody(request).find(u"\"runId\":\"18446744073709551615\""), Wide::npos);
}

TEST(BuildRequestBody, TextsAreEscaped) {
  TranslateBatchRequest request = Minimal();
  request.texts = {u"a\"b\\c\r\n\t\x01", u"計画"};
  request.usageKind = u"u\"";
  request.clientProduct = u"p\"";
  request.instruction = u"i\"";
  request.glossary = {{u"s\"", u"t\"", u"n\""}};
  request.clientTraceId = u"c\"";
  EXPECT_EQ(
      BuildRequestBody(request),
      u"{\"texts\":[\"a\\\"b\\\\c\\r\\n\\t\\u0001\",\"計画\"],"
      u"\"sourceLang\":\"auto\",\"targetLang\":\"es\",\"usageKind\":\"u\\\"\","
      u"\"clientProduct\":\"p\\\"\",\"glossary\":[{\"source\":\"s\\\"\",\"target\":\"t\\\"\","
      u"\"note\":\"n\\\"\"}],\"instruction\":\"i\\\"\",\"trace\":{\"clientTraceId\":\"c\\\"\"}" +
          Tail());
}

TEST(BuildRequestBody, LanguageCodesAreTrustedAndNotEscaped) {
  TranslateBatchRequest request = Minimal();
  request.sourceLang = u"a\"b";
  request.targetLang = u"c\\d";
  EXPECT_NE(BuildRequestBody(request).find(u"\"sourceLang\":\"a\"b\",\"targetLang\":\"c\\d\""),
            Wide::npos);
}

}  // namespace

}  // namespace quillmarch::addin
