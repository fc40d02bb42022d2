#include "foundation/log/LogFolder.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include "foundation/system/FileBytes.h"
#include "foundation/system/Files.h"
#include "gtest/gtest.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

namespace {

namespace fs = std::filesystem;

constexpr LocalTime kTime{2024, 3, 9, 7, 5, 2, 41};

std::string Bytes(WideView text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

// The files' names, sorted.
std::vector<Wide> Names(const Wide& dir) {
  std::vector<Wide> names;
  for (const FileFacts& file : ListFolder(dir)) names.push_back(file.name);
  std::sort(names.begin(), names.end());
  return names;
}

void MakeOlder(const Wide& path, std::chrono::seconds age) {
  const fs::path file(path);
  fs::last_write_time(file, fs::last_write_time(file) - age);
}

std::uint64_t LastWrite(const Wide& path) {
  FileFacts facts;
  EXPECT_TRUE(ReadFileFacts(path, facts));
  return facts.lastWrite;
}

struct Choice {
  Wide dir;
  std::vector<Wide> reports;
};

Choice Choose(const Wide& dataHome, const Wide& moduleFolder) {
  Choice choice;
  choice.dir = ChooseLogDirectory(dataHome, moduleFolder,
                                  [&](const Wide& text) { choice.reports.push_back(text); });
  return choice;
}

}  // namespace

TEST(ChooseLogDirectory, TheDataFolderComesFirst) {
  const TempFolder home;
  const Choice choice = Choose(home.wide(), home / u"module");
  EXPECT_EQ(JoinPath(JoinPath(home.wide(), u"Quillmarch"), u"log"), choice.dir);
  EXPECT_TRUE(Exists(choice.dir));
  EXPECT_EQ(std::vector<Wide>({u"[Quillmarch] log dir: " + choice.dir + u"\r\n"}), choice.reports);
  EXPECT_TRUE(Names(choice.dir).empty());  // the probe is gone
}

TEST(ChooseLogDirectory, WhenTheDataFolderIsNotWritableTheInstallFolderIsTaken) {
  const TempFolder home;
  WriteBytes(home / u"file", "x");
  const Choice choice = Choose(home / u"file", home.wide());
  EXPECT_EQ(JoinPath(home.wide(), u"log"), choice.dir);
  EXPECT_EQ(
      std::vector<Wide>(
          {u"[Quillmarch] log dir: LOCALAPPDATA not writable, trying install dir\r\n",
           u"[Quillmarch] log dir fallback install: " + JoinPath(home.wide(), u"log") + u"\r\n"}),
      choice.reports);
}

TEST(ChooseLogDirectory, WhenTheSystemNamesNoDataFolderTheInstallFolderIsTaken) {
  const TempFolder home;
  const Choice choice = Choose(u"", home.wide());
  EXPECT_EQ(JoinPath(home.wide(), u"log"), choice.dir);
  ASSERT_EQ(2u, choice.reports.size());
  EXPECT_EQ(u"[Quillmarch] log dir: SHGetFolderPath LOCALAPPDATA failed\r\n", choice.reports[0]);
}

TEST(ChooseLogDirectory, WithNoWritableFolderThereIsNone) {
  const TempFolder home;
  WriteBytes(home / u"file", "x");
  const Choice choice = Choose(home / u"file", home / u"file");
  EXPECT_EQ(u"", choice.dir);
  EXPECT_EQ(
      std::vector<Wide>({u"[Quillmarch] log dir: LOCALAPPDATA not writable, trying install dir\r\n",
                         u"[Quillmarch] log dir: no writable directory\r\n"}),
      choice.reports);
  EXPECT_EQ(u"[Quillmarch] log dir: no writable directory\r\n", Choose(u"", u"").reports.back());
}

TEST(ChooseLogDirectory, TheChosenFolderIsCleanedOnce) {
  const TempFolder home;
  const Wide dir = Choose(home.wide(), u"").dir;
  const Wide old = JoinPath(dir, u"QuillmarchPane_ppt_trace.20200101-000000.log");
  WriteBytes(old, "x");
  MakeOlder(old, std::chrono::hours(24 * 4));
  EXPECT_EQ(dir, Choose(home.wide(), u"").dir);
  EXPECT_FALSE(Exists(old));
}

TEST(IsWritableDir, AFolderIsMadeWhenItIsMissing) {
  const TempFolder home;
  EXPECT_TRUE(IsWritableDir(home / u"new"));
  EXPECT_TRUE(Exists(home / u"new"));
  EXPECT_TRUE(Names(home / u"new").empty());
}

TEST(IsWritableDir, AnEmptyPathOrAFileIsNotWritable) {
  const TempFolder home;
  WriteBytes(home / u"file", "x");
  EXPECT_FALSE(IsWritableDir(u""));
  EXPECT_FALSE(IsWritableDir(home / u"file"));
}

TEST(RotateLog, AFileOfExactlyTheLimitStays) {
  const TempFolder dir;
  WriteSized(dir / u"Quillmarch.log", 52428800);
  RotateLog(dir.wide(), u"Quillmarch.log", kTime);
  EXPECT_EQ(std::vector<Wide>({u"Quillmarch.log"}), Names(dir.wide()));
}

TEST(RotateLog, OneByteMoreMovesItToTheNameWithTheTime) {
  const TempFolder dir;
  WriteSized(dir / u"QuillmarchPane_ppt_trace.log", 52428801);
  RotateLog(dir.wide(), u"QuillmarchPane_ppt_trace.log", kTime);
  EXPECT_EQ(std::vector<Wide>({u"QuillmarchPane_ppt_trace.20240309-070502.log"}),
            Names(dir.wide()));
}

TEST(RotateLog, OnlyTheLastDotIsCutAndAnOldRotatedFileIsReplaced) {
  const TempFolder dir;
  WriteSized(dir / u"Quillmarch.a.log", 52428801);
  WriteBytes(dir / u"Quillmarch.a.20240309-070502.log", "old");
  RotateLog(dir.wide(), u"Quillmarch.a.log", kTime);
  ASSERT_EQ(std::vector<Wide>({u"Quillmarch.a.20240309-070502.log"}), Names(dir.wide()));
  EXPECT_EQ(52428801u, fs::file_size(fs::path(dir / u"Quillmarch.a.20240309-070502.log")));
}

TEST(RotateLog, AMissingFileIsNothing) {
  const TempFolder dir;
  RotateLog(dir.wide(), u"Quillmarch.log", kTime);
  EXPECT_TRUE(Names(dir.wide()).empty());
}

TEST(CleanLogFolder, AFileAtTheAgeLimitExactlyStaysAndAnOlderOneGoes) {
  const TempFolder dir;
  const Wide path = dir / u"Quillmarch.log";
  WriteBytes(path, "x");
  const std::uint64_t limit = LastWrite(path) + 2592000000000;
  CleanLogFolder(dir.wide(), limit);
  EXPECT_TRUE(Exists(path));
  CleanLogFolder(dir.wide(), limit + 1);
  EXPECT_FALSE(Exists(path));
}

TEST(CleanLogFolder, AFileFromTheFutureStays) {
  const TempFolder dir;
  const Wide path = dir / u"Quillmarch.log";
  WriteBytes(path, "x");
  CleanLogFolder(dir.wide(), LastWrite(path) - 2592000000001);
  EXPECT_TRUE(Exists(path));
}

TEST(CleanLogFolder, OnlyLogFilesOfOursAreTouched) {
  const TempFolder dir;
  for (const WideView name :
       {u"Quillmarch.log", u"QuillmarchPane_ppt_trace.20240309-070502.log", u"Quillmarch.log.bak",
        u"Quillmarch.log1", u"quillmarchpane.log", u"QUILLMARCH.log", u"Quillmarch.txt",
        u"MyQuillmarch.log", u"Quillmarc.log"}) {
    WriteBytes(dir / name, "x");
  }
  CreateFolder(dir / u"Quillmarch.log.d");
  CleanLogFolder(dir.wide(), LastWrite(dir / u"Quillmarch.log") + 25920000000000);
  std::vector<Wide> left = {u"MyQuillmarch.log", u"QUILLMARCH.log", u"Quillmarc.log",
                            u"Quillmarch.log.d", u"Quillmarch.txt", u"quillmarchpane.log"};
  // File systems that know no case hold one name of the two that differ in case only.
  std::vector<Wide> found = Names(dir.wide());
  std::erase_if(left, [&](const Wide& name) { return name == u"QUILLMARCH.log"; });
  std::erase_if(found, [&](const Wide& name) { return name == u"QUILLMARCH.log"; });
  EXPECT_EQ(left, found);
}

TEST(CleanLogFolder, FoldersAreNoLogFiles) {
  const TempFolder dir;
  CreateFolder(dir / u"Quillmarch.log");
  CleanLogFolder(dir.wide(), FileTimeNow() + 25920000000000);
  EXPECT_TRUE(Exists(dir / u"Quillmarch.log"));
}

TEST(CleanLogFolder, TheOldestGoUntilTheSumFits) {
  const TempFolder dir;
  const Wide oldest = dir / u"Quillmarch1.log";
  const Wide middle = dir / u"Quillmarch2.log";
  const Wide newest = dir / u"Quillmarch3.log";
  WriteSized(oldest, 20000000);
  WriteSized(middle, 20000000);
  WriteSized(newest, 32428801);  // the two newest are one byte over the limit
  MakeOlder(oldest, std::chrono::hours(2));
  MakeOlder(middle, std::chrono::hours(1));
  CleanLogFolder(dir.wide(), FileTimeNow());
  EXPECT_EQ(std::vector<Wide>({u"Quillmarch3.log"}), Names(dir.wide()));
}

TEST(CleanLogFolder, ASumAtTheLimitExactlyStays) {
  const TempFolder dir;
  const Wide old = dir / u"Quillmarch1.log";
  WriteSized(old, 20000000);
  WriteSized(dir / u"Quillmarch2.log", 32428800);
  MakeOlder(old, std::chrono::hours(1));
  CreateFolder(dir / u"Quillmarch.log.d");  // a folder has no size
  CleanLogFolder(dir.wide(), FileTimeNow());
  EXPECT_EQ(3u, Names(dir.wide()).size());
}

TEST(CleanLogFolder, TheFileInUseMayGoToo) {
  const TempFolder dir;
  WriteSized(dir / u"QuillmarchPane_ppt_trace.log", 52428801);
  CleanLogFolder(dir.wide(), FileTimeNow());
  EXPECT_TRUE(Names(dir.wide()).empty());
}

TEST(MaintenanceDue, TheFirstTimeAndThenOnceForEachInterval) {
  std::atomic<std::uint64_t> last{0};
  EXPECT_TRUE(MaintenanceDue(last, 1000));
  EXPECT_FALSE(MaintenanceDue(last, 1000));
  EXPECT_FALSE(MaintenanceDue(last, 300999));
  EXPECT_TRUE(MaintenanceDue(last, 301000));
  EXPECT_FALSE(MaintenanceDue(last, 301001));
}

TEST(AppendLogLine, ThePrefixTheTextAndOneLineEndAreUtf16WithoutAMark) {
  const TempFolder dir;
  const Wide path = dir / u"Quillmarch.log";
  AppendLogLine(path, kTime, 4711, u"PptCtrl \u4e2d");
  AppendLogLine(path, kTime, 8, u"");
  EXPECT_EQ(Bytes(u"[2024-03-09 07:05:02.041 tid=4711] PptCtrl \u4e2d\r\n"
                  u"[2024-03-09 07:05:02.041 tid=8] \r\n"),
            ReadBytes(path));
}

TEST(AppendLogLine, AFileThatCannotBeOpenedDropsTheLine) {
  const TempFolder dir;
  AppendLogLine(dir / u"missing/Quillmarch.log", kTime, 1, u"x");
  EXPECT_TRUE(Names(dir.wide()).empty());
}

}  // namespace quillmarch::addin
