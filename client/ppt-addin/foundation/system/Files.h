// Files as whole operations: each call opens, does its one thing and closes. No call throws or
// reports more than whether it worked. Any thread.
//
// Paths are as the platform writes them. Names on disk that are not valid Unicode cannot be
// reached.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch {

struct FileFacts {
  Wide name;  // last path component
  bool isFolder = false;
  std::uint64_t size = 0;       // bytes
  std::uint64_t lastWrite = 0;  // 100 ns since 1601-01-01 UTC
};

// "\" on Windows, "/" elsewhere.
extern const char16_t kPathSeparator;

// `folder`, one separator, `name`.
Wide JoinPath(WideView folder, WideView name);

// What comes before the last separator, without it; empty when there is none. Both "\" and "/"
// separate on Windows, only "/" elsewhere.
Wide ParentPath(WideView path);
// What comes after the last separator; the whole path when there is none.
Wide LastComponent(WideView path);

// True when the folder exists afterwards. Windows makes the last level only; elsewhere missing
// parents are made too, as a new account has no data home yet.
bool CreateFolder(WideView path);

// Whether a file can be created here: creates an empty one, over any existing file, and deletes it.
bool ProbeFile(WideView path);

// Appends to the file, made if it is missing, with reading and writing shared.
bool AppendToFile(WideView path, std::string_view bytes);

// The whole of a regular file. False, and `bytes` empty, when it cannot be opened or read.
bool ReadWholeFile(WideView path, std::string& bytes);

// Writes a file named `path` plus `suffix` and moves it over `path`, so that a reader sees the old
// file or the new one. False leaves the old one as it was.
bool ReplaceWholeFile(WideView path, std::string_view bytes, WideView suffix = u".tmp");

// The system's number for why this thread's last call failed; ask right after that call.
std::uint32_t LastFileError();

// False when there is no such file.
bool ReadFileFacts(WideView path, FileFacts& facts);

// The entries of a folder in no particular order, "." and ".." left out; empty when unreadable.
std::vector<FileFacts> ListFolder(WideView folder);

bool DeleteOneFile(WideView path);
// Replaces a file at `to`.
bool MoveOneFile(WideView from, WideView to);

// Now, on the clock of FileFacts::lastWrite.
std::uint64_t FileTimeNow();

}  // namespace quillmarch
