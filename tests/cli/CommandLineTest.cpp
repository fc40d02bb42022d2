// The command line: what is accepted, what is refused and in which words.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/cli/DeckKind.h"
#include "host/cli/Options.h"
#include "host/cli/OutputPlan.h"
#include "host/cli/ServiceUrl.h"
#include "host/cli/TokenFile.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace fs = std::filesystem;

namespace {

CommandLine Read(std::vector<std::string> words) {
  std::vector<const char*> argv{"quillmarch"};
  for (const std::string& word : words) argv.push_back(word.c_str());
  return ReadCommandLine(static_cast<int>(argv.size()), argv.data());
}

std::string ErrorOf(const std::vector<std::string>& words) {
  const CommandLine line = Read(words);
  EXPECT_FALSE(line.run);
  EXPECT_EQ(line.exitCode, 2);
  EXPECT_EQ(line.error.find('\n'), std::string::npos);
  EXPECT_FALSE(line.error.empty());
  return line.error;
}

TEST(CommandLine, DecksAndLanguageAreEnough) {
  const CommandLine line = Read({"translate", "a.pptx", "b.pptx", "--to", "es"});
  ASSERT_TRUE(line.run);
  EXPECT_EQ(line.translate.decks, (std::vector<std::string>{"a.pptx", "b.pptx"}));
  EXPECT_EQ(line.translate.targetLang, "es");
  EXPECT_EQ(line.translate.sourceLang, "auto");
  EXPECT_EQ(line.translate.engine.name, "auto");
  EXPECT_EQ(line.translate.font, "");
  EXPECT_EQ(line.translate.slide, 0);
  EXPECT_TRUE(line.translate.ownService);
}

TEST(CommandLine, EveryOptionArrives) {
  const CommandLine line =
      Read({"translate", "--to",    "pt-BR",  "--from",    "en",       "--output-dir", "d",
            "--slide",   "3",       "--font", "Noto Sans", "--engine", "pseudo",       "--growth",
            "1.5",       "--paced", "--json", "--stats",   "--quiet",  "a.pptx"});
  ASSERT_TRUE(line.run) << line.error;
  const TranslateOptions& options = line.translate;
  EXPECT_EQ(options.decks, std::vector<std::string>{"a.pptx"});
  EXPECT_EQ(options.targetLang, "pt-BR");
  EXPECT_EQ(options.sourceLang, "en");
  EXPECT_EQ(options.output.directory, "d");
  EXPECT_EQ(options.slide, 3);
  EXPECT_EQ(options.font, "Noto Sans");
  EXPECT_EQ(options.engine.name, "pseudo");
  EXPECT_EQ(options.engine.growth, 1.5);
  EXPECT_TRUE(options.paced && options.json && options.stats && options.quiet);
}

TEST(CommandLine, NamesBehindTwoDashesAreDecksWhateverTheyLookLike) {
  const CommandLine line =
      Read({"translate", "a.pptx", "--to", "es", "--", "--in-place", "-b.pptx"});
  ASSERT_TRUE(line.run) << line.error;
  EXPECT_EQ(line.translate.decks, (std::vector<std::string>{"a.pptx", "--in-place", "-b.pptx"}));
}

TEST(CommandLine, NamesMayHoldAnyBytes) {
  const std::string odd = "\xFF {a,b} %s\n\x01.pptx";
  const CommandLine line = Read({"translate", odd, "--to", "es"});
  ASSERT_TRUE(line.run) << line.error;
  EXPECT_EQ(line.translate.decks, std::vector<std::string>{odd});
}

TEST(CommandLine, ADeckAsTheFirstWordIsToBeTranslated) {
  const CommandLine line = Read({"talk.pptx", "--to", "es"});
  ASSERT_TRUE(line.run) << line.error;
  EXPECT_EQ(line.translate.decks, std::vector<std::string>{"talk.pptx"});
  EXPECT_FALSE(Read({"talk.doc", "--to", "es"}).run);
}

TEST(CommandLine, ADeckFromStandardInputNeedsAnOutput) {
  for (const char* const deck : {"-", "/dev/stdin"}) {
    EXPECT_NE(ErrorOf({"translate", deck, "--to", "es"}).find("needs --output"), std::string::npos);
    EXPECT_TRUE(Read({"translate", deck, "--to", "es", "-o", "-"}).run);
  }
}

TEST(CommandLine, WhatIsMissingIsNamed) {
  EXPECT_NE(ErrorOf({}).find("subcommand"), std::string::npos);
  EXPECT_NE(ErrorOf({"translate", "--to", "es"}).find("DECK"), std::string::npos);
  EXPECT_NE(ErrorOf({"translate", "a.pptx"}).find("--to"), std::string::npos);
  EXPECT_NE(ErrorOf({"translate", "", "--to", "es"}).find("empty"), std::string::npos);
}

TEST(CommandLine, OptionsThatContradictEachOtherAreRefused) {
  const std::vector<std::vector<std::string>> contradictions = {
      {"--in-place", "--output", "x"},
      {"--in-place", "--output-dir", "x"},
      {"--output", "x", "--output-dir", "x"},
      {"--output", "-", "--json"},
      {"--in-place", "--force"},
      {"--force", "--skip-existing"},
      {"--openai-ca-file", "c"},
      {"--service", "http://h", "--engine", "auto"},
      {"--service", "http://h", "--openai-url", "http://h"},
      {"--token-file", "t"},
      {"--ca-file", "c"},
      {"--growth", "2"},
      {"--engine", "apertium", "--growth", "2"},
      {"--openai-model", "m"},
      {"--select", "2", "--slide", "2"},
  };
  for (std::vector<std::string> words : contradictions) {
    words.insert(words.begin(), {"translate", "a.pptx", "--to", "es"});
    ErrorOf(words);
  }
}

TEST(CommandLine, ValuesOutOfRangeAreRefused) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--slide", "0"},     {"--slide", "-1"},
      {"--slide", "x"},     {"--slide", "1.5"},
      {"--engine", "best"}, {"--engine", "pseudo", "--growth", "0.5"},
      {"--bogus"},          {"--engine", "pseudo", "--growth", "nan"},
      {"--from", "e"},      {"--from", "en\""},
  };
  for (std::vector<std::string> words : wrong) {
    words.insert(words.begin(), {"translate", "a.pptx", "--to", "es"});
    ErrorOf(words);
  }
  ErrorOf({"translate", "a.pptx", "--to", "../es"});
  ErrorOf({"translate", "a.pptx", "--to", "auto"});
}

TEST(CommandLine, HelpAndVersionAreNoErrors) {
  const CommandLine version = Read({"--version"});
  EXPECT_FALSE(version.run);
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.output.rfind("quillmarch ", 0), 0u);
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"--help"}, {"translate", "--help"}, {"translate", "-h"}}) {
    const CommandLine help = Read(words);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.output.find("Exit codes:"), std::string::npos);
    EXPECT_NE(help.output.find("Examples:"), std::string::npos);
  }
  const std::string help = Read({"translate", "--help"}).output;
  EXPECT_NE(help.find("Usage: quillmarch translate"), std::string::npos);
  for (const char* const option : {"--to",
                                   "--from",
                                   "--output",
                                   "--output-dir",
                                   "--in-place",
                                   "--slide",
                                   "--select",
                                   "--font",
                                   "--service",
                                   "--token-file",
                                   "--ca-file",
                                   "--engine",
                                   "--paced",
                                   "--json",
                                   "--stats",
                                   "--quiet",
                                   "--growth",
                                   "--openai-url",
                                   "--openai-model",
                                   "--openai-key-file",
                                   "--openai-ca-file",
                                   "--force",
                                   "--skip-existing"}) {
    EXPECT_NE(help.find(option), std::string::npos) << option;
  }
}

TEST(ServiceUrl, SchemeHostAndPortAreRead) {
  Endpoint endpoint;
  std::string error;
  ASSERT_TRUE(ParseServiceUrl("http://localhost", endpoint, error));
  EXPECT_EQ(endpoint.host, u"localhost");
  EXPECT_EQ(endpoint.port, 80);
  EXPECT_FALSE(endpoint.useHttps);
  ASSERT_TRUE(ParseServiceUrl("HTTPS://api.example.com", endpoint, error));
  EXPECT_EQ(endpoint.port, 443);
  EXPECT_TRUE(endpoint.useHttps);
  ASSERT_TRUE(ParseServiceUrl("https://10.0.0.1:8443", endpoint, error));
  EXPECT_EQ(endpoint.port, 8443);
  ASSERT_TRUE(ParseServiceUrl("http://[::1]:8080", endpoint, error));
  EXPECT_EQ(endpoint.host, u"[::1]");
  EXPECT_EQ(endpoint.port, 8080);
  ASSERT_TRUE(ParseServiceUrl("https://h:8443/", endpoint, error));
  EXPECT_EQ(endpoint.port, 8443);
}

TEST(ServiceUrl, AnythingElseIsRefusedInOneSentence) {
  for (const char* const url :
       {"", "localhost", "ftp://h", "http://", "http://:80", "http://h/v1", "http://h:",
        "http://h:0", "http://h:65536", "http://h:8x", "http://h:-1", "http://u:p@h", "http://h?x",
        "http://h#x", "http://[::1", "http://[]:80", "http://a b", "http:/h", "https//h"}) {
    Endpoint endpoint;
    std::string error;
    EXPECT_FALSE(ParseServiceUrl(url, endpoint, error)) << url;
    EXPECT_FALSE(error.empty()) << url;
  }
}

TEST(TokenFile, TheFirstWordCounts) {
  const TempFolder folder;
  std::string token;
  std::string error;
  EXPECT_TRUE(ReadTokenFile(folder.Put("a", "\n  secret 500\nother\n"), token, error));
  EXPECT_EQ(token, "secret");
}

TEST(TokenFile, AFileWithoutAUsableWordIsRefused) {
  const TempFolder folder;
  std::string token;
  std::string error;
  EXPECT_FALSE(ReadTokenFile(folder.Path("missing"), token, error));
  EXPECT_NE(error.find("missing"), std::string::npos);
  EXPECT_FALSE(ReadTokenFile(folder.Path(""), token, error));
  EXPECT_FALSE(ReadTokenFile(folder.Put("empty", ""), token, error));
  EXPECT_FALSE(ReadTokenFile(folder.Put("blank", " \r\n\n"), token, error));
  EXPECT_FALSE(ReadTokenFile(folder.Put("high", "caf\xC3\xA9"), token, error));
  EXPECT_FALSE(ReadTokenFile(folder.Put("long", std::string(9000, 'x')), token, error));
}

std::vector<DeckJob> Planned(const std::vector<std::string>& decks, const OutputRule& rule = {}) {
  Result<OutputPlan> plan = PlanOutputs(decks, rule, "es");
  EXPECT_TRUE(plan.ok()) << plan.error().words;
  return plan ? plan->jobs : std::vector<DeckJob>(decks.size());
}

std::string PlanError(const std::vector<std::string>& decks, const OutputRule& rule = {}) {
  Result<OutputPlan> plan = PlanOutputs(decks, rule, "es");
  EXPECT_FALSE(plan.ok());
  return plan ? "" : plan.error().words;
}

OutputRule ToFile(const std::string& file) {
  OutputRule rule;
  rule.file = file;
  return rule;
}

OutputRule ToFolder(const std::string& folder) {
  OutputRule rule;
  rule.directory = folder;
  return rule;
}

OutputRule InPlace() {
  OutputRule rule;
  rule.inPlace = true;
  return rule;
}

TEST(OutputPlan, ADeckGoesBesideItselfUnderTheLanguagesName) {
  const auto jobs = Planned({"a/talk.v2.pptx", "deck", "b.potx"});
  EXPECT_EQ(jobs[0].output, "a/talk.v2.es.pptx");
  EXPECT_EQ(jobs[1].output, "deck.es");
  EXPECT_EQ(jobs[2].output, "b.es.potx");
}

TEST(OutputPlan, AnOutputFolderKeepsTheNamesAndMustExist) {
  const TempFolder folder;
  const auto jobs = Planned({"x/a.pptx", "y/b.pptx"}, ToFolder(folder.Path("")));
  EXPECT_EQ(jobs[0].output, folder.Path("a.es.pptx"));
  EXPECT_EQ(jobs[1].output, folder.Path("b.es.pptx"));
  EXPECT_EQ(PlanError({"x/a.pptx"}, ToFolder(folder.Path("none"))),
            "Cannot write " + folder.Path("none") + ": there is no such folder.");
  EXPECT_EQ(PlanError({"x/a.pptx"}, ToFile(folder.Path("none/a.pptx"))),
            "Cannot write " + folder.Path("none/a.pptx") + ": there is no folder " +
                folder.Path("none") + ".");
}

TEST(OutputPlan, TwoDecksNeverBecomeOneFile) {
  const TempFolder folder;
  EXPECT_NE(PlanError({"x/a.pptx", "y/a.pptx"}, ToFolder(folder.Path(""))).find("both"),
            std::string::npos);
  PlanError({"a.pptx", "./a.pptx"});
  const std::string deck = folder.Put("a.pptx", "x");
  fs::create_symlink(deck, folder.Path("link.pptx"));
  PlanError({deck, folder.Path("link.pptx")}, InPlace());
  PlanError({"a.pptx", "b.pptx"}, ToFile("out.pptx"));
}

TEST(OutputPlan, TheDeckItselfIsReplacedInPlaceOnly) {
  const TempFolder folder;
  const std::string deck = folder.Put("a.pptx", "x");
  EXPECT_NE(PlanError({deck}, ToFile(deck)).find("--in-place"), std::string::npos);
  fs::create_hard_link(deck, folder.Path("hard.pptx"));
  PlanError({deck}, ToFile(folder.Path("hard.pptx")));
  // The output of one deck is another deck of the same command.
  fs::create_directory(folder.Path("sub"));
  const std::string other = folder.Put("sub/a.es.pptx", "y");
  PlanError({deck, other}, ToFolder(folder.Path("sub")));
  EXPECT_TRUE(fs::equivalent(Planned({deck}, InPlace())[0].output, deck));
}

TEST(OutputPlan, TranslationsOfOtherDecksAreLeftOut) {
  const TempFolder folder;
  const std::string deck = folder.Put("a.pptx", "x");
  const std::string translated = folder.Put("a.es.pptx", "y");
  const std::string alone = folder.Put("b.es.pptx", "y");
  for (const OutputRule& rule : {OutputRule{}, InPlace()}) {
    const Result<OutputPlan> plan = PlanOutputs({translated, deck, alone}, rule, "es");
    ASSERT_TRUE(plan.ok());
    EXPECT_EQ(plan->leftOut, std::vector<std::string>{translated});
    ASSERT_EQ(plan->jobs.size(), 2U);
    EXPECT_EQ(plan->jobs[0].input, deck);
    EXPECT_EQ(plan->jobs[1].input, alone);
  }
}

TEST(OutputPlan, InPlaceThroughALinkWritesTheFileItself) {
  const TempFolder folder;
  const std::string deck = folder.Put("a.pptx", "x");
  fs::create_symlink(deck, folder.Path("link.pptx"));
  EXPECT_EQ(Planned({folder.Path("link.pptx")}, InPlace())[0].output, fs::canonical(deck).string());
}

TEST(OutputPlan, ALinkAsOutputIsRefusedInWords) {
  const TempFolder folder;
  fs::create_symlink("elsewhere.pptx", folder.Path("out.pptx"));
  EXPECT_EQ(PlanError({"a.pptx"}, ToFile(folder.Path("out.pptx"))),
            "Cannot write " + folder.Path("out.pptx") +
                ": it is a link to elsewhere.pptx; name that file itself.");
}

TEST(OutputPlan, OnlyTheEndingsOfDecksAreWritten) {
  const TempFolder folder;
  for (const char* const name : {"o.pptx", "o.PPTM", "o.potx", "o.potm", "o.ppsx", "o.ppsm"}) {
    EXPECT_EQ(Planned({"a.pptx"}, ToFile(folder.Path(name)))[0].output, folder.Path(name));
  }
  for (const char* const name : {"o.ppt", "o.odp", "o.pdf", "o"}) {
    EXPECT_NE(PlanError({"a.pptx"}, ToFile(folder.Path(name))).find("decks are written as .pptx"),
              std::string::npos)
        << name;
  }
}

std::string PlaceError(const DeckJob& job, bool force = false) {
  const Result<OutputPlace> place = OutputPlace::Check(job, force);
  return place ? "" : place.error().words;
}

TEST(OutputPlace, AReadOnlyTargetIsRefusedWhoeverAsks) {
  const TempFolder folder;
  const std::string target = folder.Put("t.pptx", "x");
  EXPECT_EQ(PlaceError({"a.pptx", folder.Path("new.pptx")}), "");
  EXPECT_EQ(folder.Files(), 1U);
  chmod(target.c_str(), 0444);
  EXPECT_EQ(PlaceError({"a.pptx", target}, true),
            "Cannot write " + target + ": the existing file is read-only.");
  EXPECT_NE(PlaceError({"a.pptx", folder.Path("none/x.pptx")}), "");
}

TEST(OutputPlace, AFileThatTheCommandDidNotWriteNeedsForce) {
  const TempFolder folder;
  const std::string target = folder.Put("t.pptx", "x");
  EXPECT_EQ(PlaceError({"a.pptx", target}),
            "Cannot write " + target + ": it exists already; use --force to replace it.");
  EXPECT_EQ(PlaceError({"a.pptx", target}, true), "");
  EXPECT_EQ(PlaceError({target, target}), "");
}

TEST(OutputPlace, SeesThatSomebodyWroteThereSince) {
  const TempFolder folder;
  const std::string target = folder.Path("t.pptx");
  const Result<OutputPlace> place = OutputPlace::Check({"a.pptx", target}, false);
  ASSERT_TRUE(place.ok());
  EXPECT_TRUE(place->Unchanged());
  folder.Put("t.pptx", "theirs");
  EXPECT_FALSE(place->Unchanged());
}

TEST(DeckKind, ADeckSavedUnderAnotherEndingGetsItsContentType) {
  constexpr char kTemplate[] =
      "application/vnd.openxmlformats-officedocument.presentationml.template.main+xml";
  constexpr char kDeck[] =
      "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml";
  constexpr char kMacros[] = "application/vnd.ms-powerpoint.presentation.macroEnabled.main+xml";
  EXPECT_EQ(*ContentTypeUnder(".pptx", kTemplate), kDeck);
  EXPECT_EQ(*ContentTypeUnder(".pptm", kDeck), kMacros);
  EXPECT_EQ(*ContentTypeUnder(".other", kDeck), kDeck);
  const Result<std::string> refused = ContentTypeUnder(".pptx", kMacros);
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().words,
            "the deck may contain macros, which a .pptx file cannot hold; use .pptm");
}

}  // namespace

}  // namespace quillmarch::host
