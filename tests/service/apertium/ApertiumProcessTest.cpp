// The pipeline's keeper, over pipelines that crash, hang and lose step.
#include "service/engines/ApertiumProcess.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <thread>

#include "service/engines/Engine.h"
#include "support/TempFolder.h"

namespace quillmarch::service {

namespace {

using Outcome = ApertiumProcess::Outcome;
using Strings = std::vector<std::string>;

// Echoes what it gets up to each NUL. The text "die" ends it, "hang" makes it wait for ever,
// "twice" is answered twice. Leaves its process's number in the file "pid".
constexpr char kFake[] = R"(#!/usr/bin/env bash
echo $$ >> "$(dirname "$0")/pid"
while IFS= read -r -d '' text; do
  case "$text" in
    die*) exit 7;;
    hang*) sleep 1000;;
    twice*) printf '%s\0%s\0' "$text" "$text";;
    *) printf '%s\0' "$text";;
  esac
done
)";

class Process : public testing::Test {
 protected:
  Process() {
    const std::string program = folder.Put("fake", kFake);
    chmod(program.c_str(), 0755);
    mode = folder.Put("eng-spa.mode", program + "\n");
  }
  int Starts() const {
    std::ifstream file(folder.Path("pid"));
    int count = 0;
    for (std::string line; std::getline(file, line);) ++count;
    return count;
  }
  pid_t LastPid() const {
    std::ifstream file(folder.Path("pid"));
    pid_t last = 0;
    for (pid_t pid = 0; file >> pid;) last = pid;
    return last;
  }
  TempFolder folder;
  std::string mode;
  std::atomic<bool> stop{false};
  Strings out;
};

constexpr std::chrono::milliseconds kLong{20'000};

}  // namespace

TEST_F(Process, OneProcessServesManyRequests) {
  ApertiumProcess process(mode, kLong);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(process.Translate({"a", "", "b c"}, out, stop), Outcome::kOk);
    EXPECT_EQ(out, (Strings{"a", "", "b c"}));
  }
  EXPECT_EQ(Starts(), 1);
}

TEST_F(Process, NothingIsStartedBeforeTheFirstUse) {
  { const ApertiumProcess process(mode, kLong); }
  EXPECT_EQ(Starts(), 0);
}

TEST_F(Process, MoreThanAPipeHoldsGoesThrough) {
  ApertiumProcess process(mode, kLong);
  const Strings texts(20, std::string(50'000, 'x'));
  EXPECT_EQ(process.Translate(texts, out, stop), Outcome::kOk);
  EXPECT_EQ(out, texts);
}

TEST_F(Process, AfterACrashANewOneIsStarted) {
  ApertiumProcess process(mode, kLong);
  EXPECT_EQ(process.Translate({"a", "die", "b"}, out, stop), Outcome::kDied);
  EXPECT_EQ(process.Translate({"c"}, out, stop), Outcome::kOk);
  EXPECT_EQ(out, Strings{"c"});
  EXPECT_EQ(Starts(), 2);
}

TEST_F(Process, ATextAnsweredTwiceIsNoticed) {
  ApertiumProcess process(mode, kLong);
  // The count alone would fit.
  EXPECT_EQ(process.Translate({"twice", "b"}, out, stop), Outcome::kDied);
  EXPECT_EQ(process.Translate({"c"}, out, stop), Outcome::kOk);
  EXPECT_EQ(out, Strings{"c"});
}

TEST_F(Process, AHangTimesOutAndIsKilled) {
  // Long enough for a start on a busy machine, since the second text needs one.
  ApertiumProcess process(mode, std::chrono::seconds(2));
  EXPECT_EQ(process.Translate({"hang"}, out, stop), Outcome::kTimedOut);
  EXPECT_EQ(process.Translate({"c"}, out, stop), Outcome::kOk);
}

TEST_F(Process, AStopEndsAHang) {
  ApertiumProcess process(mode, kLong);
  EXPECT_EQ(process.Translate({"a"}, out, stop), Outcome::kOk);
  std::thread stopper([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    stop = true;
  });
  EXPECT_EQ(process.Translate({"hang"}, out, stop), Outcome::kStopped);
  stopper.join();
}

TEST_F(Process, ItEndsWithItsKeeper) {
  pid_t pid = 0;
  {
    ApertiumProcess process(mode, kLong);
    EXPECT_EQ(process.Translate({"a"}, out, stop), Outcome::kOk);
    pid = LastPid();
    EXPECT_EQ(kill(pid, 0), 0);
  }
  EXPECT_NE(kill(pid, 0), 0);
}

// An owner that is killed can't clean up after itself.
TEST_F(Process, ItEndsWithItsOwnersDeathInTheMidstOfAText) {
  const pid_t owner = fork();
  ASSERT_GE(owner, 0);
  if (owner == 0) {
    ApertiumProcess process(mode, kLong);
    process.Translate({"hang"}, out, stop);
    _exit(0);
  }
  const auto limit = std::chrono::steady_clock::now() + kLong;
  const auto wait = [&](const auto& until) {
    while (!until() && std::chrono::steady_clock::now() < limit) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return until();
  };
  ASSERT_TRUE(wait([&] { return LastPid() != 0; }));
  const pid_t group = getpgid(LastPid());
  ASSERT_GT(group, 0);
  // Ended processes without a parent may wait a while for whoever collects them.
  const auto alive = [&] {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      std::ifstream stat(entry.path() / "stat");
      std::string line;
      std::getline(stat, line);
      const std::size_t name = line.rfind(')');
      if (name == std::string::npos) continue;
      std::istringstream rest(line.substr(name + 1));
      char state = 0;
      pid_t parent = 0;
      pid_t itsGroup = 0;
      rest >> state >> parent >> itsGroup;
      if (itsGroup == group && state != 'Z' && state != 'X') return true;
    }
    return false;
  };
  EXPECT_TRUE(alive());
  kill(owner, SIGKILL);
  waitpid(owner, nullptr, 0);
  EXPECT_TRUE(wait([&] { return !alive(); }));
}

TEST_F(Process, AMissingModeDies) {
  ApertiumProcess process(folder.Path("none.mode"), kLong);
  EXPECT_EQ(process.Translate({"a"}, out, stop), Outcome::kDied);
}

TEST_F(Process, TheEngineSurvivesAPipelineThatDiedSinceTheLastRequest) {
  EngineOptions options;
  options.name = "apertium";
  options.apertiumModes = folder.Path(".");
  const auto made = MakeEngine(options);
  ASSERT_TRUE(made) << made.error().words;
  const std::unique_ptr<Engine>& engine = *made;
  EngineRequest request;
  request.sourceLang = "en";
  request.targetLang = "es";
  request.texts = {"a"};
  EXPECT_TRUE(engine->Translate(request, stop).ok);
  kill(LastPid(), SIGKILL);
  EXPECT_TRUE(engine->Translate(request, stop).ok);
  EXPECT_EQ(Starts(), 2);
  request.texts = {"die"};
  const EngineResult result = engine->Translate(request, stop);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.failure, EngineFailure::kFailed);
  EXPECT_EQ(Starts(), 3);
}

}  // namespace quillmarch::service
