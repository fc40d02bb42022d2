// The rules of the log folder, each on a folder that is handed in: choice, rotation, age and size.
// No function throws anything but std::bad_alloc. Any thread; nothing is locked.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "foundation/system/Clock.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

inline constexpr std::uint64_t kLogRotationBytes = 52428800;  // a larger file is rotated
inline constexpr std::uint64_t kLogFolderBytes = 52428800;
inline constexpr std::uint64_t kLogAgeLimit = 2592000000000;  // 100 ns: 3 days
inline constexpr std::uint64_t kLogMaintenanceMs = 300000;

// Makes the folder when it is missing and tries a file in it. An empty path is not writable.
bool IsWritableDir(WideView dir);

// The log folder below `dataHome` (empty: the system named none), else below `moduleFolder`
// (empty: unknown), else empty. `report` gets what goes to the debugger. The chosen folder is
// cleaned once.
Wide ChooseLogDirectory(WideView dataHome, WideView moduleFolder,
                        const std::function<void(const Wide&)>& report);

// Moves the file to its rotated name when it is larger than kLogRotationBytes.
void RotateLog(WideView dir, WideView fileName, const LocalTime& now);

// Applies the age limit, then the size limit. `now` is on the clock of file times.
void CleanLogFolder(WideView dir, std::uint64_t now);

// Whether maintenance is due at `tick`; the answer "yes" is given once for each interval.
bool MaintenanceDue(std::atomic<std::uint64_t>& lastTick, std::uint64_t tick);

// Rotation and both limits.
void MaintainFolder(WideView dir, WideView fileName);

// One line, in three pieces, at the end of the file.
void AppendLogLine(WideView path, const LocalTime& now, std::uint32_t thread, WideView text);

}  // namespace quillmarch
