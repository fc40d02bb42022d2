// Two processes that write at once.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "UserConfigFile.h"

namespace {

// Writes a text of its own length over and over and gives up nothing but its turn.
[[noreturn]] void WriteOverAndOver(const Wide& path, char letter, std::size_t length) {
  for (int turn = 0; turn < 200; ++turn) {
    WriteConfigAtomic(path, std::string(length, letter) + "\n");
  }
  _exit(0);
}

bool IsWhole(const std::string& text) {
  return text == std::string(300000, 'a') + "\n" || text == std::string(20, 'b') + "\n";
}

TEST(UserConfigurationOfTwoWriters, IsNeverTorn) {
  UserConfigFile config;
  const Wide path = ConfigPath();
  ASSERT_TRUE(WriteConfigAtomic(path, std::string(20, 'b') + "\n"));
  const pid_t first = fork();
  if (first == 0) WriteOverAndOver(path, 'a', 300000);
  const pid_t second = fork();
  if (second == 0) WriteOverAndOver(path, 'b', 20);
  int ended = 0;
  int torn = 0;
  while (ended < 2) {
    if (!IsWhole(config.Read())) ++torn;
    int status = 0;
    if (waitpid(-1, &status, WNOHANG) > 0) ++ended;
  }
  EXPECT_EQ(torn, 0);
  EXPECT_TRUE(IsWhole(config.Read()));
  EXPECT_FALSE(Exists(path + u".tmp"));
}

}  // namespace
