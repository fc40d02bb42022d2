#include <windows.h>

#include "foundation/log/LogFolder.h"
#include "foundation/system/FileBytes.h"
#include "foundation/system/WinText.h"
#include "gtest/gtest.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

TEST(CleanLogFolderOnWindows, AFileThatCannotBeDeletedStaysCounted) {
  const TempFolder dir;
  const Wide locked = dir / u"Quillmarch1.log";
  const Wide next = dir / u"Quillmarch2.log";
  WriteSized(locked, 40000000);
  WriteSized(next, 20000000);
  const std::filesystem::path file(locked);
  std::filesystem::last_write_time(file,
                                   std::filesystem::last_write_time(file) - std::chrono::hours(1));
  // Held open without sharing deletion.
  const HANDLE holder =
      CreateFileW(ToWinText(locked).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, holder);
  CleanLogFolder(dir.wide(), FileTimeNow());
  EXPECT_TRUE(Exists(locked));
  EXPECT_FALSE(Exists(next));
  CloseHandle(holder);
}

}  // namespace quillmarch::addin
