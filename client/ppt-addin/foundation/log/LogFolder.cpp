#include "foundation/log/LogFolder.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <vector>

#include "foundation/system/Files.h"

namespace quillmarch {

namespace {

// The file's bytes are those of the text in memory.
static_assert(std::endian::native == std::endian::little);

std::string_view BytesOf(WideView text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

constexpr std::size_t kUsualPrefix = 48;

// `before` and the number, zero-padded to `width` digits.
void AppendNumber(Wide& out, WideView before, std::uint32_t number, std::size_t width) {
  char16_t digits[10];  // enough for 32 bits
  std::size_t at = std::size(digits);
  do {
    digits[--at] = static_cast<char16_t>(u'0' + number % 10);
    number /= 10;
  } while (number != 0);
  out += before;
  for (std::size_t count = std::size(digits) - at; count < width; ++count) out += u'0';
  out.append(digits + at, std::size(digits) - at);
}

bool IsLogFile(const FileFacts& file) {
  return !file.isFolder && file.name.starts_with(u"Quillmarch") &&
         file.name.find(u".log") != Wide::npos;
}

std::vector<FileFacts> LogFilesIn(WideView dir) {
  std::vector<FileFacts> files = ListFolder(dir);
  std::erase_if(files, [](const FileFacts& file) { return !IsLogFile(file); });
  return files;
}

void DeleteOldLogs(WideView dir, std::uint64_t now) {
  for (const FileFacts& file : LogFilesIn(dir)) {
    // A file from the future has no age.
    if (now > file.lastWrite && now - file.lastWrite > kLogAgeLimit) {
      DeleteOneFile(JoinPath(dir, file.name));
    }
  }
}

void ShrinkLogs(WideView dir) {
  std::vector<FileFacts> files = LogFilesIn(dir);
  std::uint64_t sum = 0;
  for (const FileFacts& file : files) sum += file.size;
  if (sum <= kLogFolderBytes) return;
  std::stable_sort(files.begin(), files.end(), [](const FileFacts& a, const FileFacts& b) {
    return a.lastWrite < b.lastWrite;
  });
  for (const FileFacts& file : files) {
    if (sum <= kLogFolderBytes) return;
    if (!DeleteOneFile(JoinPath(dir, file.name))) continue;
    sum = file.size > sum ? 0 : sum - file.size;
  }
}

}  // namespace

bool IsWritableDir(WideView dir) {
  if (dir.empty()) return false;
  CreateFolder(dir);
  return ProbeFile(JoinPath(dir, u".qm-write-probe"));
}

Wide ChooseLogDirectory(WideView dataHome, WideView moduleFolder,
                        const std::function<void(const Wide&)>& report) {
  Wide chosen;
  if (dataHome.empty()) {
    report(u"[Quillmarch] log dir: SHGetFolderPath LOCALAPPDATA failed\r\n");
  } else {
    const Wide base = JoinPath(dataHome, u"Quillmarch");
    CreateFolder(base);
    const Wide dir = JoinPath(base, u"log");
    if (IsWritableDir(dir)) {
      report(u"[Quillmarch] log dir: " + dir + u"\r\n");
      chosen = dir;
    } else {
      report(u"[Quillmarch] log dir: LOCALAPPDATA not writable, trying install dir\r\n");
    }
  }
  if (chosen.empty() && !moduleFolder.empty()) {
    const Wide dir = JoinPath(moduleFolder, u"log");
    if (IsWritableDir(dir)) {
      report(u"[Quillmarch] log dir fallback install: " + dir + u"\r\n");
      chosen = dir;
    }
  }
  if (chosen.empty()) {
    report(u"[Quillmarch] log dir: no writable directory\r\n");
  } else {
    CleanLogFolder(chosen, FileTimeNow());
  }
  return chosen;
}

void RotateLog(WideView dir, WideView fileName, const LocalTime& now) {
  const Wide path = JoinPath(dir, fileName);
  FileFacts facts;
  if (!ReadFileFacts(path, facts) || facts.size <= kLogRotationBytes) return;
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, ".%04u%02u%02u-%02u%02u%02u.log", now.year, now.month, now.day,
                now.hour, now.minute, now.second);
  Wide rotated(path.substr(0, path.size() - fileName.size()));
  rotated += fileName.substr(0, fileName.rfind(u'.'));
  rotated += ToWide(stamp);
  MoveOneFile(path, rotated);
}

void CleanLogFolder(WideView dir, std::uint64_t now) {
  DeleteOldLogs(dir, now);
  ShrinkLogs(dir);
}

bool MaintenanceDue(std::atomic<std::uint64_t>& lastTick, std::uint64_t tick) {
  std::uint64_t last = lastTick.load(std::memory_order_relaxed);
  if (last != 0 && tick - last < kLogMaintenanceMs) return false;
  // Of several threads that find it due, one goes.
  return lastTick.compare_exchange_strong(last, tick, std::memory_order_relaxed);
}

void MaintainFolder(WideView dir, WideView fileName) {
  RotateLog(dir, fileName, LocalTimeNow());
  CleanLogFolder(dir, FileTimeNow());
}

void AppendLogLine(WideView path, const LocalTime& now, std::uint32_t thread, WideView text) {
  // "[%04u-%02u-%02u %02u:%02u:%02u.%03u tid=%lu] ", put together by hand: a line costs little
  // beside it.
  Wide prefix;
  prefix.reserve(kUsualPrefix);
  AppendNumber(prefix, u"[", now.year, 4);
  AppendNumber(prefix, u"-", now.month, 2);
  AppendNumber(prefix, u"-", now.day, 2);
  AppendNumber(prefix, u" ", now.hour, 2);
  AppendNumber(prefix, u":", now.minute, 2);
  AppendNumber(prefix, u":", now.second, 2);
  AppendNumber(prefix, u".", now.millisecond, 3);
  AppendNumber(prefix, u" tid=", thread, 1);
  prefix += u"] ";
  AppendToFile(path, BytesOf(prefix));
  AppendToFile(path, BytesOf(text));
  AppendToFile(path, BytesOf(u"\r\n"));
}

}  // namespace quillmarch
