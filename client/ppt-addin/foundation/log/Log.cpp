#include "foundation/log/Log.h"

#include <memory>

#include "foundation/log/DebugOutput.h"
#include "foundation/log/LogFolder.h"
#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"

namespace quillmarch {

namespace {

constexpr WideView kLogFileName = u"QuillmarchPane_ppt_trace.log";

std::atomic<std::uint64_t> LastMaintenanceTick{0};

struct LogPlace {
  Wide dir;
  Wide path;  // empty: file logging is off
};

LogPlace FindPlace() {
  LogPlace place;
  try {
    place.dir = ChooseLogDirectory(LocalDataFolder(), ParentPath(ModulePath()),
                                   [](const Wide& text) { DebugOutput(text.c_str()); });
    if (!place.dir.empty()) place.path = JoinPath(place.dir, kLogFileName);
  } catch (...) {
    place = {};
  }
  return place;
}

const LogPlace& Place() {
  // Never destroyed, as a detached thread may log while the process ends.
  static const LogPlace& place = *std::make_unique<const LogPlace>(FindPlace()).release();
  return place;
}

}  // namespace

void LogLine(const void*, const char16_t* text) {
  try {
    if (text == nullptr) text = u"(null)";
    DebugOutput(text);
    DebugOutput(u"\r\n");
    const LogPlace& place = Place();
    if (place.path.empty()) return;
    const LocalTime now = LocalTimeNow();
    if (MaintenanceDue(LastMaintenanceTick, SystemTickCount())) {
      MaintainFolder(place.dir, kLogFileName);
    }
    AppendLogLine(place.path, now, CurrentThreadNumber(), text);
  } catch (...) {
    // A line that cannot be written is lost; its caller goes on.
  }
}

const Wide& LogDirectory() {
  return Place().dir;
}

void MaintainLogDirectory(std::atomic<std::uint64_t>& lastTick, WideView fileName) {
  try {
    if (LogDirectory().empty() || !MaintenanceDue(lastTick, SystemTickCount())) return;
    MaintainFolder(LogDirectory(), fileName);
  } catch (...) {
    // Out of memory: the next interval does it.
  }
}

}  // namespace quillmarch
