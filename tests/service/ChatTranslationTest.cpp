#include "service/engines/ChatTranslation.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace quillmarch::service {

namespace {

using Strings = std::vector<std::string>;

// The answer's body around a model's message.
std::string Chat(const std::string& message) {
  return nlohmann::json{{"choices", {{{"message", {{"role", "assistant"}, {"content", message}}}}}}}
      .dump();
}

struct Read {
  bool ok = false;
  Strings translations;
  std::string error;
};

Read ReadMessage(const std::string& message, const Strings& texts = {"one", "two"}) {
  const Result<Strings> answer = ReadChatAnswer(Chat(message), texts);
  return answer ? Read{true, *answer, ""} : Read{false, {}, answer.error().words};
}

void ExpectGood(const std::string& message) {
  const Read read = ReadMessage(message);
  EXPECT_TRUE(read.ok) << message << ": " << read.error;
  EXPECT_EQ(read.translations, (Strings{"uno", "dos"})) << message;
}

void ExpectBad(const std::string& message) {
  const Read read = ReadMessage(message);
  EXPECT_FALSE(read.ok) << message;
  EXPECT_NE(read.error, "");
}

}  // namespace

TEST(ChatTranslation, TheQuestionNumbersTheTextsInOrder) {
  EngineRequest request;
  request.texts = {"first", "second \"x\"", "\xFF"};
  request.sourceLang = "auto";
  request.targetLang = "es-MX";
  const nlohmann::json body = nlohmann::json::parse(ChatRequestBody(request, "a-model"));
  EXPECT_EQ(body["model"], "a-model");
  ASSERT_EQ(body["messages"].size(), 2u);
  EXPECT_EQ(body["messages"][0]["role"], "system");
  const std::string wishes = body["messages"][0]["content"];
  EXPECT_NE(wishes.find("to Spanish (es-MX)"), std::string::npos) << wishes;
  EXPECT_EQ(wishes.find(" from "), std::string::npos) << wishes;
  EXPECT_EQ(body["messages"][1]["content"],
            "{\"1\":\"first\",\"2\":\"second \\\"x\\\"\",\"3\":\"\xEF\xBF\xBD\"}");
}

TEST(ChatTranslation, GlossaryAndInstructionAreInTheQuestion) {
  EngineRequest request;
  request.texts = {"a"};
  request.sourceLang = "en";
  request.targetLang = "ja";
  request.instruction = "Be formal.";
  request.glossary = {{"plan", "計画", "noun"}, {"team", "チーム", ""}};
  const std::string body = ChatRequestBody(request, "m");
  EXPECT_NE(body.find("from English (en) to Japanese (ja)"), std::string::npos) << body;
  EXPECT_NE(body.find("- plan => 計画 (noun)\\n- team => チーム\\n"), std::string::npos) << body;
  EXPECT_NE(body.find("Be formal."), std::string::npos) << body;
}

TEST(ChatTranslation, NumberedObjectsAndArraysAreRead) {
  ExpectGood(R"({"1":"uno","2":"dos"})");
  ExpectGood(R"([{"id":1,"text":"uno"},{"id":2,"text":"dos"}])");
  ExpectGood(R"([{"id":"1","text":"uno"},{"id":"2","text":"dos"}])");
  ExpectGood(R"({"translations":{"1":"uno","2":"dos"}})");
  ExpectGood(R"({"translations":[{"id":1,"text":"uno"},{"id":2,"text":"dos"}]})");
}

TEST(ChatTranslation, AnotherOrderIsPutRight) {
  ExpectGood(R"({"2":"dos","1":"uno"})");
  ExpectGood(R"([{"id":2,"text":"dos"},{"id":1,"text":"uno"}])");
}

TEST(ChatTranslation, ProseAndFencesAroundTheAnswerArePassedOver) {
  ExpectGood(
      "Sure! Here it is [as you asked] {really}:\n```json\n{\"1\":\"uno\",\"2\":\"dos\"}\n```\nBye "
      ":}");
  ExpectGood("{\"1\":\"uno\",\"2\":\"dos\"} I hope {this} helps.");
}

TEST(ChatTranslation, BracketsInsideTheTranslationsDoNotEndThem) {
  const Read read = ReadMessage(R"({"1":"u } ] \" {","2":"d [["})");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.translations, (Strings{"u } ] \" {", "d [["}));
}

TEST(ChatTranslation, TheWrongCountIsRefused) {
  ExpectBad(R"({"1":"uno"})");
  ExpectBad(R"({"1":"uno","2":"dos","3":"tres"})");
  ExpectBad(R"([{"id":1,"text":"uno"},{"id":1,"text":"dos"}])");
  ExpectBad(R"([{"id":1,"text":"uno"},{"id":2,"text":"dos"},{"id":1,"text":"tres"}])");
  ExpectBad(R"({"0":"cero","1":"uno"})");
}

TEST(ChatTranslation, TextsWithoutNumbersAreRefusedSinceTheirOrderCantBeChecked) {
  ExpectBad(R"(["uno","dos"])");
}

TEST(ChatTranslation, WhatIsNoListOfStringsIsRefused) {
  ExpectBad("");
  ExpectBad("I can't do that.");
  ExpectBad(R"({"1":"uno","2":2})");
  ExpectBad(R"({"1":"uno","2":"dos")");
  ExpectBad("{}");
  ExpectBad("[]");
  ExpectBad(std::string(100'000, '['));
  ExpectBad(std::string(100'000, '{') + std::string(100'000, '}'));
}

TEST(ChatTranslation, ABodyThatIsNoChatAnswerIsRefused) {
  for (const char* body : {"", "null", "{}", R"({"choices":[]})",
                           R"({"choices":[{"message":{"content":null}}]})", "<html>"}) {
    EXPECT_FALSE(ReadChatAnswer(body, {"one"})) << body;
  }
}

TEST(ChatTranslation, ALostPlaceholderIsRefusedWithItsTextsNumber) {
  const Strings texts = {"one", "see [[QM_REF_1]]"};
  EXPECT_TRUE(ReadMessage(R"({"1":"uno","2":"ve [[QM_REF_1]]"})", texts).ok);
  const Read read = ReadMessage(R"({"1":"uno","2":"ve REF 1"})", texts);
  EXPECT_FALSE(read.ok);
  EXPECT_NE(read.error.find("text 2"), std::string::npos) << read.error;
}

TEST(ChatTranslation, AnswersNestedWithoutEndAreBadAnswers) {
  const std::string deep(10'000, '[');
  std::string nested;
  for (int i = 0; i < 10'000; ++i) nested += "{\"translations\":";
  ExpectBad(nested + "1" + std::string(10'000, '}'));
  ExpectBad("[{\"id\":" + std::string(100'000, '[') + std::string(100'000, ']') +
            ",\"text\":\"x\"}]");
  EXPECT_FALSE(ReadChatAnswer("{\"choices\":" + deep, {"one"}));
  EXPECT_FALSE(ReadChatAnswer("{\"choices\":" + deep + std::string(10'000, ']') + "}", {"one"}));
}

TEST(ChatTranslation, AnAnswerOfAMillionValuesIsABadAnswer) {
  std::string values = "1";
  for (int i = 0; i < 1'000'000; ++i) values += ",1";
  ExpectBad("{\"1\":[" + values + "]}");
  EXPECT_FALSE(ReadChatAnswer("{\"choices\":[" + values + "]}", {"one"}));
}

TEST(ChatTranslation, ATermWithoutATargetIsKept) {
  EngineRequest request;
  request.targetLang = "es";
  request.glossary = {{"Quill", "", ""}, {"Plan", "Proyecto", ""}};
  const std::string body = ChatRequestBody(request, "m");
  EXPECT_NE(body.find("- Quill (keep it untranslated)"), std::string::npos) << body;
  EXPECT_NE(body.find("- Plan => Proyecto"), std::string::npos) << body;
}

TEST(ChatTranslation, AServersOwnSentenceIsFoundWhereServersPutIt) {
  EXPECT_EQ(ServersOwnSentence(R"({"error":{"message":"No such model: x"}})"), "No such model: x");
  EXPECT_EQ(ServersOwnSentence(R"({"error":"model not found"})"), "model not found");
  EXPECT_EQ(ServersOwnSentence(R"({"message":"two\nlines"})"), "two lines");
  EXPECT_EQ(ServersOwnSentence(R"({"detail":"nope"})"), "nope");
  EXPECT_EQ(ServersOwnSentence(R"({"detail":{"x":1}})"), "");
  EXPECT_EQ(ServersOwnSentence("<html>"), "");
  EXPECT_EQ(ServersOwnSentence(R"({"message":")" + std::string(1000, 'x') + "\"}").size(), 200u);
}

}  // namespace quillmarch::service
