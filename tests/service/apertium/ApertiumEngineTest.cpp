// The offline engine over Debian's real English and Spanish pair.
#include <gtest/gtest.h>

#include <cstdio>
#include <thread>

#include "service/engines/Engine.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

namespace {

using Strings = std::vector<std::string>;

class Apertium : public testing::Test {
 protected:
  Apertium() {
    EngineOptions options;
    options.name = "apertium";
    auto made = MakeEngine(options);
    if (made) engine = std::move(made).value();
  }
  EngineResult Ask(const Strings& texts, const std::string& source = "en",
                   const std::string& target = "es", const std::string& run = "") {
    EngineRequest request;
    request.run = run;
    request.texts = texts;
    request.sourceLang = source;
    request.targetLang = target;
    return engine->Translate(request, stop);
  }
  std::string One(const std::string& text, const std::string& source = "en",
                  const std::string& target = "es", const std::string& run = "") {
    const EngineResult result = Ask({text}, source, target, run);
    EXPECT_TRUE(result.ok) << result.message;
    EXPECT_EQ(result.translations.size(), 1u);
    return result.ok ? result.translations[0] : "";
  }
  std::unique_ptr<Engine> engine;
  std::atomic<bool> stop{false};
};

// What the packages' own command makes of a text.
std::string Command(const std::string& text) {
  const std::string path = testing::TempDir() + "quillmarch-apertium";
  FILE* file = std::fopen(path.c_str(), "w");
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
  FILE* pipe = popen(("LC_ALL=C.UTF-8 apertium -u eng-spa " + path).c_str(), "r");
  std::string out;
  char buffer[512];
  for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    out.append(buffer, got);
  }
  pclose(pipe);
  std::remove(path.c_str());
  return out;
}

std::string SingleSpaced(std::string text) {
  for (std::size_t at = 0; (at = text.find("  ", at)) != std::string::npos;) text.erase(at, 1);
  return text;
}

}  // namespace

TEST_F(Apertium, TranslatesEnglishToSpanishAndBack) {
  EXPECT_EQ(One("The house is big."), "La casa es grande.");
  EXPECT_EQ(One("La casa es grande.", "es", "en"), "The house is big.");
}

TEST_F(Apertium, LanguagesAreReadAsPeopleWriteThem) {
  EXPECT_EQ(One("The house is big.", "English", "es-MX"), "La casa es grande.");
  EXPECT_EQ(One("The house is big.", "en-GB", "spa"), "La casa es grande.");
}

TEST_F(Apertium, TextsComeOutAsThePackagesOwnCommandGivesThem) {
  for (const std::string text :
       {"Quarterly results exceed our expectations", "Our revenue grew by 5% in 2020.",
        "Next steps: hire two engineers; open the new office", "What did we learn?",
        "The quick brown fox jumps over the lazy dog", "Agenda", "R&D (internal) 50/50",
        "First line\nSecond line", "One sentence. Another sentence! And a third?",
        "Costs fell  by half", "Zorblax and Quuxify are unknown words"}) {
    // It doubles spaces in places, which is not wanted.
    const bool spaced = text.find("  ") != std::string::npos;
    EXPECT_EQ(One(text), spaced ? Command(text) : SingleSpaced(Command(text))) << text;
  }
}

TEST_F(Apertium, ATextDoesNotDependOnTheOnesBeforeIt) {
  const Strings texts = {"The children play in the garden",
                         "Plan",
                         "a ( b",
                         "The big house?",
                         "He said \"yes",
                         "Play"};
  const EngineResult together = Ask(texts);
  ASSERT_TRUE(together.ok);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(together.translations[i], One(texts[i])) << texts[i];
  }
}

TEST_F(Apertium, BlanksAroundATextAndEmptyTextsStay) {
  const EngineResult result = Ask({"", "  ", " \vThe house\n", "42 %", "\t"});
  ASSERT_TRUE(result.ok);
  EXPECT_EQ(result.translations, (Strings{"", "  ", " \vLa casa\n", "42 %", "\t"}));
}

TEST_F(Apertium, LineBreaksInsideATextStay) {
  EXPECT_EQ(One("The house\vThe garden"), "La casa\vEl jardín");
}

TEST_F(Apertium, TheStreamsOwnCharactersSurvive) {
  const std::string signs = "^ $ / < > [ ] { } @ \\ ~ * # + = _ | ` % & \" ( )";
  const std::string translated = One("The house " + signs + " is big");
  std::string left = translated;
  std::size_t at = 0;
  for (const char c : signs) {
    if (c == ' ') continue;
    at = translated.find(c, at);
    ASSERT_NE(at, std::string::npos) << c << " in " << translated;
  }
  EXPECT_EQ(One(std::string("The\0 house", 10)), "La casa");
  const std::string imitation = "Water ^house<n><sg>$ [here] \\";
  EXPECT_EQ(One(imitation), Command(imitation));
}

TEST_F(Apertium, UnknownWordsHaveNoMark) {
  EXPECT_EQ(One("Zorblax"), "Zorblax");
  EXPECT_EQ(One("the zorblax house").find('*'), std::string::npos);
}

TEST_F(Apertium, LockedPiecesSurvive) {
  const std::string text =
      "See [[QM_the_12]] and [[qm__1]], the house at https://example.com/the/house?big=red or "
      "write to the.house@example.com about the garden.";
  const std::string translated = One(text);
  EXPECT_EQ(CountLockedPlaceholders(translated), 2u) << translated;
  for (const char* piece : {"[[QM_the_12]]", "[[qm__1]]", "https://example.com/the/house?big=red",
                            "the.house@example.com", "jardín"}) {
    EXPECT_NE(translated.find(piece), std::string::npos) << piece << " in " << translated;
  }
}

TEST_F(Apertium, ALockedPieceAtTheStartOrByItselfSurvives) {
  EXPECT_EQ(One("[[QM_A_1]]"), "[[QM_A_1]]");
  EXPECT_EQ(One("https://example.com/house"), "https://example.com/house");
  EXPECT_EQ(One("[[QM_A_1]] the house").rfind("[[QM_A_1]]", 0), 0u);
  const std::string many = "[[QM_A_1]][[QM_A_2]] house [[QM_A_3]]";
  EXPECT_EQ(CountLockedPlaceholders(One(many)), 3u);
}

TEST_F(Apertium, AnyTextComesBackWithoutUpset) {
  for (const std::string text :
       {"计划 house", "😀 the house 😀", "\xFF\xFEhouse", "مرحبا house", "\x01\x02 house \x7f",
        "house\u2028house", "ℵ̈ ﬁ house", "'s n't 'll house"}) {
    const EngineResult result = Ask({text, "The house is big."});
    ASSERT_TRUE(result.ok) << text << ": " << result.message;
    EXPECT_NE(result.translations[0].find("asa"), std::string::npos) << result.translations[0];
    EXPECT_EQ(result.translations[1], "La casa es grande.");
  }
}

TEST_F(Apertium, AHundredLongTextsPass) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "The children play in the garden of the big house. ";
  const EngineResult result = Ask(Strings(100, text));
  ASSERT_TRUE(result.ok) << result.message;
  EXPECT_EQ(result.translations[99], result.translations[0]);
  EXPECT_NE(result.translations[0], text);
}

TEST_F(Apertium, TheSourceIsDetectedOverTheWholeRequest) {
  const EngineResult result =
      Ask({"Agenda", "The quarterly results exceed our expectations", "The house"}, "auto");
  ASSERT_TRUE(result.ok);
  EXPECT_EQ(result.translations[2], "La casa");
}

constexpr char kGerman[] = "Die Ergebnisse des Quartals übertreffen unsere Erwartungen bei weitem.";

TEST_F(Apertium, AShortRequestIsTakenForTheLanguageRecognisedBeforeInItsRun) {
  const std::string spanish =
      "Los resultados del trimestre superan nuestras expectativas de venta.";
  EXPECT_NE(One(spanish, "auto", "en", "r1"), spanish);
  EXPECT_EQ(One("La casa", "auto", "en", "r1"), "The house");
}

TEST_F(Apertium, WhatOneRunShowedDoesNotDecideAnothers) {
  ASSERT_TRUE(
      Ask({"The children play in the garden of the big house every day."}, "auto", "es", "english")
          .ok);
  const EngineResult german = Ask({kGerman, "Kosten"}, "auto", "es", "german");
  ASSERT_TRUE(german.ok) << german.message;
  EXPECT_EQ(german.translations, (Strings{kGerman, "Kosten"}));
  ASSERT_EQ(german.left.size(), 2u);
  for (const LeftText& left : german.left) {
    EXPECT_EQ(left.cause, LeftCause::kNoPair);
    EXPECT_EQ(left.language, "deu");
  }
  // Too short to be judged, and the run has shown nothing but German so far.
  EXPECT_EQ(One("Haus", "auto", "es", "german"), "Haus");
  EXPECT_EQ(One("The house", "auto", "es", "english"), "La casa");
}

TEST_F(Apertium, AGermanSlideInAnEnglishDeckIsLeftAlone) {
  const std::string run = "mixed";
  ASSERT_TRUE(
      Ask({"The children play in the garden of the big house every day."}, "auto", "es", run).ok);
  const EngineResult slide = Ask({kGerman}, "auto", "es", run);
  ASSERT_TRUE(slide.ok) << slide.message;
  EXPECT_EQ(slide.translations[0], kGerman);
  EXPECT_EQ(One("The house", "auto", "es", run), "La casa");
}

TEST_F(Apertium, ANamedLanguageHoldsForTheTextsThatTheDetectorDoesNotContradict) {
  const EngineResult result =
      Ask({"The house", kGerman, "The big house is in the garden."}, "en", "es", "named");
  ASSERT_TRUE(result.ok) << result.message;
  EXPECT_EQ(result.translations[0], "La casa");
  EXPECT_EQ(result.translations[1], kGerman);
  EXPECT_EQ(result.translations[2], "La casa grande es en el jardín.");
  ASSERT_EQ(result.left.size(), 1u);
  EXPECT_EQ(result.left[0].place, 1u);
  EXPECT_EQ(result.left[0].language, "deu");
}

TEST_F(Apertium, CapitalsAreKept) {
  EXPECT_EQ(One("EXECUTIVE SUMMARY"), "RESUMEN EJECUTIVO");
  EXPECT_EQ(One("THE BIG GARDEN\vThe house"), "EL JARDÍN GRANDE\vLa casa");
}

TEST_F(Apertium, TheSpacesThatItDoublesAreSingle) {
  const std::string text = "It's the CEO's house";
  ASSERT_NE(Command(text).find("  "), std::string::npos);
  EXPECT_EQ(One(text).find("  "), std::string::npos) << One(text);
  EXPECT_NE(One("The  house").find("  "), std::string::npos);
}

TEST_F(Apertium, NoWordMovesOverALineBreak) {
  EXPECT_EQ(One("Revenue\vCosts"), "Ingresos\vCostes");
}

TEST_F(Apertium, GlossaryTermsAreUsed) {
  EngineRequest request;
  request.texts = {"The house of the Widget is big."};
  request.sourceLang = "en";
  request.targetLang = "es";
  request.glossary = {{"Widget", "", ""}, {"house", "mansión", ""}};
  const EngineResult result = engine->Translate(request, stop);
  ASSERT_TRUE(result.ok);
  EXPECT_NE(result.translations[0].find("mansión"), std::string::npos) << result.translations[0];
  EXPECT_NE(result.translations[0].find("Widget"), std::string::npos) << result.translations[0];
}

TEST_F(Apertium, AVeryLongWordIsLeftAndNamedAndTheRestIsTranslated) {
  const std::string word(1'000'000, 'w');
  const EngineResult result = Ask({"The house", "The big house " + word});
  ASSERT_TRUE(result.ok) << result.message;
  EXPECT_EQ(result.translations[0], "La casa");
  EXPECT_NE(result.translations[1].find(word), std::string::npos);
  ASSERT_EQ(result.left.size(), 1u);
  EXPECT_EQ(result.left[0].place, 1u);
  EXPECT_EQ(result.left[0].cause, LeftCause::kTooLongWord);
}

TEST_F(Apertium, OneClientsLongTextDoesNotHoldUpAnothers) {
  ASSERT_TRUE(Ask({"The house"}).ok);
  std::string text;
  for (int i = 0; i < 400; ++i) text += "The children play in the garden of the big house. ";
  std::atomic<bool> slowEnded{false};
  std::thread slow([&] {
    EngineRequest request;
    request.texts = Strings(40, text);
    request.sourceLang = "en";
    request.targetLang = "es";
    request.client = "slow";
    engine->Translate(request, stop);
    slowEnded = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EngineRequest request;
  request.texts = {"The house"};
  request.sourceLang = "en";
  request.targetLang = "es";
  request.client = "quick";
  EXPECT_TRUE(engine->Translate(request, stop).ok);
  EXPECT_FALSE(slowEnded);
  stop = true;
  slow.join();
}

TEST_F(Apertium, AShortRequestByItselfIsTakenForEnglish) {
  EXPECT_EQ(One("The house", "auto"), "La casa");
}

TEST_F(Apertium, ATextAlreadyInTheTargetLanguageComesBackAsItIs) {
  const std::string spanish = "No hay ninguna casa como la casa de mis padres en el pueblo.";
  EXPECT_EQ(One(spanish, "auto"), spanish);
  EXPECT_EQ(One(spanish, "en"), spanish);
  EXPECT_EQ(One(spanish, "es", "es"), spanish);
  const EngineResult mixed =
      Ask({spanish, "The children play in the garden of the big house every day"}, "auto");
  ASSERT_TRUE(mixed.ok);
  EXPECT_EQ(mixed.translations[0], spanish);
  EXPECT_NE(mixed.translations[1].find("jardín"), std::string::npos) << mixed.translations[1];
}

TEST_F(Apertium, ALanguageWithoutAPairIsRefusedWithAdvice) {
  const EngineResult named = Ask({"Haus"}, "de", "es");
  EXPECT_FALSE(named.ok);
  EXPECT_EQ(named.failure, EngineFailure::kUnsupportedPair);
  EXPECT_NE(named.message.find("--engine openai"), std::string::npos);
  const EngineResult detected =
      Ask({"Die Ergebnisse des Quartals übertreffen unsere Erwartungen bei weitem."}, "auto");
  EXPECT_FALSE(detected.ok);
  EXPECT_NE(detected.message.find("German"), std::string::npos) << detected.message;
  EXPECT_FALSE(Ask({"x"}, "en", "klingon").ok);
}

TEST_F(Apertium, SeveralThreadsMayAskAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this, i] {
      for (int k = 0; k < 5; ++k) {
        if (i % 2 == 0) {
          EXPECT_EQ(One("The house is big."), "La casa es grande.");
        } else {
          EXPECT_EQ(One("La casa es grande.", "es", "en"), "The house is big.");
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(Apertium, AStopIsHeeded) {
  stop = true;
  const EngineResult result = Ask({"The house"});
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.failure, EngineFailure::kStopping);
}

}  // namespace quillmarch::service
