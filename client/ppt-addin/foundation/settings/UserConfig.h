// The per-user configuration file: display language and pane width. Every access opens the file;
// every write replaces it, so that a reader sees the old text or the new one. Two processes that
// write at once: the last replace wins. Nothing here raises anything. Any thread.
#pragma once

#include <cstdint>
#include <string>

#include "foundation/text/Wide.h"

namespace quillmarch {

// "config.json" in the user's data folder; empty without such a folder.
Wide ConfigPath();

// The whole file without a byte order mark. False when it cannot be opened; an empty file is true
// with empty text.
bool ReadConfigText(WideView path, std::string& out);
bool WriteConfigAtomic(WideView path, const std::string& text, std::uint32_t* errorOut = nullptr);

inline constexpr std::int32_t kMinPaneWidthPt = 240;
inline constexpr std::int32_t kMaxPaneWidthPt = 1600;
inline constexpr std::int32_t kDefaultPaneWidthPt = 520;

// In points. The default, and `fromFileOut` false, when the file has no value in range.
std::int32_t ReadPaneWidth(bool& fromFileOut);
// `errorOut` gets the system's error number when the file could not be read or replaced. A file
// that cannot be patched is not a valid configuration and is replaced as a whole.
bool WritePaneWidth(std::int32_t value, std::uint32_t& errorOut);

// Empty when the file names none; what it names is not checked.
Wide ReadUiLang();
// A tag that is not in the language list is refused without touching the file.
bool WriteUiLang(WideView tag, std::uint32_t& errorOut);

}  // namespace quillmarch
