// The program quillmarch-service, as a user starts it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <regex>
#include <thread>

#include "service/LoopbackClient.h"
#include "service/PrivateFile.h"
#include "service/RunningService.h"

namespace quillmarch::service {

namespace {

class Program {
 public:
  explicit Program(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), SERVICE_PROGRAM);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    int pipe[2];
    EXPECT_EQ(pipe2(pipe, O_CLOEXEC), 0);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, pipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, pipe[1], STDERR_FILENO);
    EXPECT_EQ(posix_spawn(&pid_, SERVICE_PROGRAM, &files, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&files);
    close(pipe[1]);
    output_ = pipe[0];
  }
  ~Program() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(output_);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  std::string ReadLine() const {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line += c;
    return line;
  }
  std::string ReadAll() const {
    std::string all;
    char buffer[1024];
    for (ssize_t got = 0; (got = read(output_, buffer, sizeof buffer)) > 0;) {
      all.append(buffer, static_cast<std::size_t>(got));
    }
    return all;
  }
  // The port of its "listening on" line.
  std::uint16_t Listening() const {
    const std::string line = ReadLine();
    std::smatch found;
    EXPECT_TRUE(std::regex_search(line, found, std::regex("^listening on https?://[^ ]*:(\\d+) ")))
        << line;
    return found.empty() ? std::uint16_t{0} : static_cast<std::uint16_t>(std::stoi(found[1]));
  }
  void Signal(int number) const { kill(pid_, number); }
  int ExitCode() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_ = -1;
  int output_ = -1;
};

}  // namespace

TEST(ServiceProgram, ServesUntilASignalAndWritesItsLog) {
  const TempFolder folder;
  for (const int number : {SIGTERM, SIGINT}) {
    Program program(
        {"--port", "0", "--engine", "pseudo", "--growth", "2", "--log", folder.Path("log")});
    const std::uint16_t port = program.Listening();
    EXPECT_EQ(HttpRequest("POST", LocalUrl(port), kOneText).body,
              R"({"translations":["⟦Plan Pla⟧"]})");
    program.Signal(number);
    EXPECT_EQ(program.ExitCode(), 0);
  }
  std::ifstream log(folder.Path("log"));
  int lines = 0;
  for (std::string line; std::getline(log, line); ++lines) {
    EXPECT_NE(line.find("POST /v1/translate 200 token=- texts=1 chars=4 engine=pseudo ms="),
              std::string::npos)
        << line;
  }
  EXPECT_EQ(lines, 2);
}

TEST(ServiceProgram, ReadsItsTokenFile) {
  const TempFolder folder;
  Program program({"--port", "0", "--engine", "pseudo", "--token-file",
                   PutPrivate(folder, "tokens", "secret\n")});
  const std::uint16_t port = program.Listening();
  EXPECT_EQ(HttpRequest("POST", LocalUrl(port), kOneText).status, 401);
  EXPECT_EQ(HttpRequest("POST", LocalUrl(port), kOneText, {"Authorization: Bearer secret"}).status,
            200);
}

TEST(ServiceProgram, AHangUpReloadsTheTokensAndTheLog) {
  const TempFolder folder;
  const std::string tokens = PutPrivate(folder, "tokens", "old\n");
  Program program(
      {"--port", "0", "--engine", "pseudo", "--token-file", tokens, "--log", folder.Path("log")});
  const std::uint16_t port = program.Listening();
  const auto status = [&](const char* token) {
    return HttpRequest("POST", LocalUrl(port), kOneText,
                       {std::string("Authorization: Bearer ") + token})
        .status;
  };
  EXPECT_EQ(status("old"), 200);
  std::filesystem::rename(folder.Path("log"), folder.Path("log.1"));
  folder.Put("tokens", "new name=Ann\n");
  program.Signal(SIGHUP);
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (status("new") != 200 && std::chrono::steady_clock::now() < limit) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(status("old"), 401);
  EXPECT_EQ(status("new"), 200);
  const std::string log = TempFolder::Bytes(folder.Path("log"));
  EXPECT_NE(log.find("reloaded tokens and certificate"), std::string::npos) << log;
  EXPECT_NE(log.find(" 200 token=Ann "), std::string::npos) << log;
  folder.Put("tokens", "broken line here\n");
  program.Signal(SIGHUP);
  EXPECT_EQ(status("new"), 200);
}

TEST(ServiceProgram, TheVersionIsPrinted) {
  Program program({"--version"});
  EXPECT_TRUE(std::regex_match(program.ReadAll(), std::regex("quillmarch-service [0-9.]+\n")));
  EXPECT_EQ(program.ExitCode(), 0);
}

TEST(ServiceProgram, ThePortIsTheSameEachTimeUnlessToldOtherwise) {
  Program program({"--help"});
  EXPECT_TRUE(std::regex_search(program.ReadAll(), std::regex("--port [^\\n]*8710")));
}

TEST(ServiceProgram, ACheckNamesWhatIsWrong) {
  const TempFolder folder;
  {
    Program program({"--check", "--port", "0", "--engine", "pseudo"});
    const std::string text = program.ReadAll();
    EXPECT_EQ(program.ExitCode(), 0) << text;
    EXPECT_EQ(text, "engine: works\naddress, tokens and certificate: works\n");
  }
  {
    Program program({"--check", "--port", "0", "--engine", "openai", "--openai-url",
                     "http://127.0.0.1:1", "--openai-model", "m", "--token-file",
                     folder.Put("open", "secret\n"), "--log", folder.Path("no/log")});
    const std::string text = program.ReadAll();
    EXPECT_EQ(program.ExitCode(), 1);
    EXPECT_NE(text.find("engine: The model's server 127.0.0.1:1 can't be reached"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("chmod o-rw"), std::string::npos) << text;
    EXPECT_NE(text.find("Cannot write the log file"), std::string::npos) << text;
  }
}

TEST(ServiceProgram, HelpShowsExamplesAndExitCodes) {
  Program program({"--help"});
  const std::string text = program.ReadAll();
  EXPECT_EQ(program.ExitCode(), 0);
  EXPECT_NE(text.find("Examples:"), std::string::npos);
  EXPECT_NE(text.find("Exit codes:"), std::string::npos);
}

TEST(ServiceProgram, WrongUsageExitsWith2) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--nonsense"},
                                                    {"--port", "99999999"},
                                                    {"--engine", "magic"},
                                                    {"--certificate", "x"}}) {
    Program program(arguments);
    program.ReadAll();
    EXPECT_EQ(program.ExitCode(), 2) << arguments[0];
  }
}

TEST(ServiceProgram, WhatKeepsItFromStartingIsOneSentenceAndExit1) {
  const TempFolder folder;
  const RunningService other;
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--port", std::to_string(other.port())},
        {"--token-file", folder.Path("none")},
        {"--log", folder.Path("no/such/folder/log")},
        {"--growth", "0"}}) {
    std::vector<std::string> all = {"--engine", "pseudo"};
    if (arguments[0] != "--port") all.insert(all.end(), {"--port", "0"});
    all.insert(all.end(), arguments.begin(), arguments.end());
    Program program(all);
    const std::string text = program.ReadAll();
    EXPECT_EQ(program.ExitCode(), 1) << text;
    EXPECT_EQ(text.rfind("quillmarch-service: ", 0), 0u) << text;
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
  }
}

}  // namespace quillmarch::service
