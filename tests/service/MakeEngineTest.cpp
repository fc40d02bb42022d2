#include <gtest/gtest.h>

#include <limits>

#include "service/engines/Engine.h"
#include "support/TempFolder.h"

namespace quillmarch::service {

namespace {
std::string Refusal(const EngineOptions& options) {
  const auto made = MakeEngine(options);
  return made ? "" : made.error().words;
}
}  // namespace

TEST(MakeEngine, AnUnknownNameIsRefusedWithTheKnownOnes) {
  EngineOptions options;
  options.name = "magic";
  EXPECT_NE(Refusal(options).find("auto, apertium, openai or pseudo"), std::string::npos);
}

TEST(MakeEngine, WithoutAnOfflinePackageTheUserIsToldWhatToDo) {
  const TempFolder folder;
  EngineOptions options;
  options.apertiumModes = folder.Path("none");
  for (const char* name : {"auto", "apertium"}) {
    options.name = name;
    EXPECT_NE(Refusal(options).find("apt-get install apertium apertium-eng-spa"),
              std::string::npos);
  }
}

TEST(MakeEngine, TheGrowthHasItsBounds) {
  EngineOptions options;
  options.name = "pseudo";
  for (const double growth : {0.0, 0.5, -1.0, 21.0, std::numeric_limits<double>::quiet_NaN()}) {
    options.growth = growth;
    EXPECT_NE(Refusal(options), "") << growth;
  }
  options.growth = 1.5;
  const auto made = MakeEngine(options);
  ASSERT_TRUE(made) << made.error().words;
  const std::unique_ptr<Engine>& engine = *made;
  EXPECT_STREQ(engine->name(), "pseudo");
  EngineRequest request;
  request.texts = {"Plan", "B"};
  const std::atomic<bool> stop{false};
  EXPECT_EQ(engine->Translate(request, stop).translations,
            (std::vector<std::string>{"⟦Plan P⟧", "⟦BB⟧"}));
}

}  // namespace quillmarch::service
