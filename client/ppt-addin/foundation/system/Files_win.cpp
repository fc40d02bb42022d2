#include <windows.h>

#include <limits>

#include "foundation/system/Files.h"
#include "foundation/system/LiveCounts.h"
#include "foundation/system/WinText.h"

namespace quillmarch {

const char16_t kPathSeparator = u'\\';

namespace {

constexpr DWORD kShareReadWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr DWORD kReadChunk = 65536;

std::uint64_t Join(DWORD high, DWORD low) {
  return (std::uint64_t{high} << 32) | low;
}

std::uint64_t FileTimeOf(const FILETIME& t) {
  return Join(t.dwHighDateTime, t.dwLowDateTime);
}

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() {
    if (*this) CloseHandle(handle_);
  }
  HANDLE get() const { return handle_; }
  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE handle_;
  LiveCount<LiveKind::kFile> live_;
};

}  // namespace

bool CreateFolder(WideView path) {
  if (path.empty()) return false;
  const std::wstring name = ToWinText(path);
  if (CreateDirectoryW(name.c_str(), nullptr)) return true;
  const DWORD attributes = GetFileAttributesW(name.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool ProbeFile(WideView path) {
  const std::wstring name = ToWinText(path);
  {
    const FileHandle file(CreateFileW(name.c_str(), GENERIC_WRITE, kShareReadWrite, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr));
    if (!file) return false;
  }
  DeleteFileW(name.c_str());
  return true;
}

bool AppendToFile(WideView path, std::string_view bytes) {
  const FileHandle file(CreateFileW(ToWinText(path).c_str(), FILE_APPEND_DATA, kShareReadWrite,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file || bytes.size() > std::numeric_limits<DWORD>::max()) return false;
  DWORD written = 0;
  return WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
         written == bytes.size();
}

bool ReadWholeFile(WideView path, std::string& bytes) {
  bytes.clear();
  const FileHandle file(CreateFileW(ToWinText(path).c_str(), GENERIC_READ, kShareReadWrite, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  std::string read;
  for (;;) {
    const std::size_t have = read.size();
    read.resize(have + kReadChunk);
    DWORD got = 0;
    if (!ReadFile(file.get(), read.data() + have, kReadChunk, &got, nullptr)) return false;
    read.resize(have + got);
    if (got == 0) break;
  }
  bytes = std::move(read);
  return true;
}

std::uint32_t LastFileError() {
  return GetLastError();
}

bool ReadFileFacts(WideView path, FileFacts& facts) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(ToWinText(path).c_str(), GetFileExInfoStandard, &data)) return false;
  facts.name = LastComponent(path);
  facts.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  facts.size = Join(data.nFileSizeHigh, data.nFileSizeLow);
  facts.lastWrite = FileTimeOf(data.ftLastWriteTime);
  return true;
}

std::vector<FileFacts> ListFolder(WideView folder) {
  std::vector<FileFacts> entries;
  WIN32_FIND_DATAW data{};
  const HANDLE search = FindFirstFileW(ToWinText(JoinPath(folder, u"*")).c_str(), &data);
  if (search == INVALID_HANDLE_VALUE) return entries;
  do {
    FileFacts facts;
    facts.name = FromWinText(data.cFileName);
    if (facts.name == u"." || facts.name == u"..") continue;
    facts.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    facts.size = Join(data.nFileSizeHigh, data.nFileSizeLow);
    facts.lastWrite = FileTimeOf(data.ftLastWriteTime);
    entries.push_back(std::move(facts));
  } while (FindNextFileW(search, &data));
  FindClose(search);
  return entries;
}

bool DeleteOneFile(WideView path) {
  return DeleteFileW(ToWinText(path).c_str()) != FALSE;
}

bool MoveOneFile(WideView from, WideView to) {
  return MoveFileExW(ToWinText(from).c_str(), ToWinText(to).c_str(), MOVEFILE_REPLACE_EXISTING) !=
         FALSE;
}

std::uint64_t FileTimeNow() {
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  return FileTimeOf(now);
}

}  // namespace quillmarch
