#include "translate/TranslateTrace.h"

#include <atomic>
#include <cstdio>
#include <exception>

#include "foundation/log/Log.h"
#include "foundation/system/Files.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kTraceFileName = u"Quillmarch_translate_trace.log";
constexpr char kTraceTag[] = "cpp.http.translate";

}  // namespace

std::string AttemptText(const TranslateAttempt& attempt) {
  char text[kAttemptTextBuffer];
  std::snprintf(text, sizeof(text),
                "clientTraceId=%s runId=%llu batchSeq=%u segs=%zu chars=%zu httpMs=%lld ok=%d "
                "code=%s",
                ToUtf8(attempt.clientTraceId).c_str(),
                static_cast<unsigned long long>(attempt.runId), attempt.batchSeq, attempt.segs,
                attempt.chars, attempt.httpMs, attempt.ok ? 1 : 0, ToUtf8(attempt.code).c_str());
  return text;
}

std::string TraceLine(const LocalTime& now, const char* text) {
  char line[kTraceLineBuffer];
  std::snprintf(line, sizeof(line), "[%04u-%02u-%02uT%02u:%02u:%02u.%03u] %s %s\n", now.year,
                now.month, now.day, now.hour, now.minute, now.second, now.millisecond, kTraceTag,
                text);
  return line;
}

void WriteTranslateTrace(const char* text) {
  static std::atomic<std::uint64_t> lastMaintenance{0};
  try {
    const Wide& folder = LogDirectory();
    if (folder.empty()) return;
    MaintainLogDirectory(lastMaintenance, kTraceFileName);
    AppendToFile(JoinPath(folder, kTraceFileName), TraceLine(LocalTimeNow(), text));
  } catch (const std::exception&) {
    // A lost line harms nobody; the attempt that it describes goes on.
  }
}

}  // namespace quillmarch::addin
