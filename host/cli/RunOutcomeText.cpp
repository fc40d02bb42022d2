#include "host/cli/RunOutcomeText.h"

#include <sys/resource.h>

#include <cstdio>
#include <set>

#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kSourceColumns = 60;

// One figure with a digit or two behind the point, in no locale.
std::string Fixed(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.*f", digits, value);
  return text;
}

std::string Ms(double ms) {
  return Fixed(ms, 1) + " ms";
}

std::string CallsLine(const char* phase, std::uint64_t invokes, std::uint64_t lookups,
                      std::int32_t units, const char* unit) {
  std::string line = std::string(phase) + std::to_string(invokes) + " invokes, " +
                     std::to_string(lookups) + " name look-ups";
  if (units > 0) {
    line += "; " + Fixed(static_cast<double>(invokes) / units, 2) + " and " +
            Fixed(static_cast<double>(lookups) / units, 2) + " for each of " +
            std::to_string(units) + " " + unit;
  }
  return line;
}

std::int32_t Translated(const addin::RunRecord& record) {
  return record.units - record.unchanged - static_cast<std::int32_t>(record.failed.size());
}

}  // namespace

bool ReachedTheDeck(const addin::RunRecord& record) {
  return record.failed.empty() && record.slidesNotReached.empty();
}

std::string OutcomeLine(const DeckJob& job, const addin::RunRecord& record, double seconds) {
  const std::string deck = PlainLine(job.input);
  const bool same = job.input == job.output;
  if (record.units == 0) {
    return deck + ": there is no text to translate" +
           (same ? "" : "; copied unchanged to " + PlainLine(job.output));
  }
  std::string line = deck + ": " + Counted(Translated(record), "text") + " translated, " +
                     std::to_string(record.unchanged) + " left as they were, " +
                     std::to_string(record.failed.size()) + " failed, in " + Fixed(seconds, 1) +
                     " s";
  if (!same) line += "; saved as " + PlainLine(job.output);
  return line;
}

std::vector<std::string> LostTextLines(const addin::RunRecord& record) {
  std::vector<std::string> lines;
  std::set<std::int32_t> named;
  for (const addin::FailedUnit& unit : record.failed) {
    named.insert(unit.slide);
    std::string line = "slide " + std::to_string(unit.slide) + ", " + PlainLine(ToUtf8(unit.label));
    if (unit.row > 0) {
      line += ", row " + std::to_string(unit.row) + ", column " + std::to_string(unit.column);
    }
    lines.push_back(line + ": not written: \"" +
                    Shorten(PlainLine(ToUtf8(unit.sourceText)), kSourceColumns) + "\"");
  }
  for (const std::int32_t slide : record.slidesNotReached) {
    if (named.count(slide) > 0) continue;
    lines.push_back("slide " + std::to_string(slide) + ": not written");
  }
  return lines;
}

std::vector<std::string> StatsLines(const RunReport& report, const DeckTimes& times) {
  const addin::RunRecord& record = report.record;
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return {
      CallsLine("host calls to collect: ", report.collect.invokes, report.collect.lookups,
                record.units, "texts"),
      // Slides are also written while the worker still translates.
      CallsLine("host calls to write: ", report.translate.invokes + report.write.invokes,
                report.translate.lookups + report.write.lookups, record.written, "written"),
      "time: open " + Ms(times.openMs) + ", collect " + Ms(report.collect.ms) + ", translate " +
          Ms(report.translate.ms) + ", write " + Ms(report.write.ms) + ", save " + Ms(times.saveMs),
      "peak memory: " + Fixed(static_cast<double>(usage.ru_maxrss) / 1024.0, 1) + " MB",
  };
}

}  // namespace quillmarch::host
