#include "host/cli/RunOutcomeText.h"

#include <sys/resource.h>

#include <cstdio>
#include <set>

#include "foundation/text/JsonText.h"
#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kSourceColumns = 60;

// With a fixed number of decimals, in no locale.
std::string Fixed(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.*f", digits, value);
  return text;
}

std::string Ms(double ms) {
  return Fixed(ms, 1) + " ms";
}

std::string CallsLine(const char* what, std::uint64_t invokes, std::uint64_t lookups,
                      std::int32_t texts) {
  std::string line = std::string("calls into the deck to ") + what + ": " + std::to_string(invokes);
  if (texts > 0) {
    line += " (" + Fixed(static_cast<double>(invokes) / texts, 2) + " for each of " +
            Counted(texts, "text") + ")";
  }
  return line + ", names looked up: " + std::to_string(lookups);
}

// Names of files may hold any bytes.
std::string Quoted(std::string_view text) {
  return "\"" + ToUtf8(JsonEscape(ToWide(text))) + "\"";
}

std::string Quoted(const Wide& text) {
  return "\"" + ToUtf8(JsonEscape(text)) + "\"";
}

std::string FailureJson(const addin::FailedUnit& unit) {
  std::string json =
      "{\"slide\":" + std::to_string(unit.slide) + ",\"shape\":" + Quoted(unit.label);
  if (unit.row > 0) {
    json += ",\"row\":" + std::to_string(unit.row) + ",\"column\":" + std::to_string(unit.column);
  }
  return json + ",\"text\":" + Quoted(unit.sourceText) + ",\"reason\":\"not written\"}";
}

}  // namespace

std::int32_t TranslatedTexts(const addin::RunRecord& record) {
  return record.units - record.unchanged - static_cast<std::int32_t>(record.failed.size());
}

bool ReachedTheDeck(const addin::RunRecord& record) {
  return record.failed.empty() && record.slidesNotReached.empty();
}

std::string OutcomeLine(const DeckJob& job, const addin::RunRecord& record, double seconds) {
  const std::string deck = ShownDeck(job.input);
  const bool same = job.input == job.output;
  if (record.units == 0) {
    return deck + ": there is no text to translate" +
           (same ? "" : "; copied unchanged to " + ShownOutput(job.output));
  }
  std::string line = deck + ": " + Counted(TranslatedTexts(record), "text") + " translated";
  if (record.unchanged > 0) {
    line += ", " + std::to_string(record.unchanged) +
            (record.unchanged == 1 ? " left as it was" : " left as they were");
  }
  if (!record.failed.empty()) line += ", " + std::to_string(record.failed.size()) + " not written";
  line += std::string(record.unchanged > 0 || !record.failed.empty() ? "," : "") + " in " +
          Fixed(seconds, 1) + " s";
  return line + (same ? "; saved in place" : "; saved as " + ShownOutput(job.output));
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

std::vector<std::string> StatsLines(const DrivenRun& run, const DeckTimes& times) {
  const addin::RunRecord& record = run.record;
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return {
      CallsLine("read", run.collect.invokes, run.collect.lookups, record.units),
      // Slides are also written while the worker still translates.
      CallsLine("write", run.translate.invokes + run.write.invokes,
                run.translate.lookups + run.write.lookups, record.written),
      "time: open " + Ms(times.openMs) + ", read " + Ms(run.collect.ms) + ", translate " +
          Ms(run.translate.ms) + ", write " + Ms(run.write.ms) + ", save " + Ms(times.saveMs),
      "peak memory: " + Fixed(static_cast<double>(usage.ru_maxrss) / 1024.0, 1) + " MB",
  };
}

std::string DeckJson(const DeckJob& job, std::size_t number, std::size_t count) {
  return "{\"event\":\"deck\",\"deck\":" + Quoted(job.input) + ",\"output\":" + Quoted(job.output) +
         ",\"number\":" + std::to_string(number) + ",\"count\":" + std::to_string(count) + "}";
}

std::string ResultJson(const DeckJob& job, const DeckEnd& end) {
  const addin::RunRecord& record = end.record;
  std::string json = "{\"event\":\"result\",\"deck\":" + Quoted(job.input) +
                     ",\"output\":" + (end.saved ? Quoted(job.output) : "null") +
                     ",\"exitCode\":" + std::to_string(end.exitCode) +
                     ",\"seconds\":" + Fixed(end.seconds, 3) +
                     ",\"error\":" + (end.error.empty() ? "null" : Quoted(end.error)) +
                     ",\"texts\":" + std::to_string(record.units) +
                     ",\"translated\":" + std::to_string(end.saved ? TranslatedTexts(record) : 0) +
                     ",\"unchanged\":" + std::to_string(record.unchanged) + ",\"failures\":[";
  for (std::size_t i = 0; i < record.failed.size(); ++i) {
    json += (i > 0 ? "," : "") + FailureJson(record.failed[i]);
  }
  json += "],\"slidesNotWritten\":[";
  for (std::size_t i = 0; i < record.slidesNotReached.size(); ++i) {
    json += (i > 0 ? "," : "") + std::to_string(record.slidesNotReached[i]);
  }
  return json + "]}";
}

}  // namespace quillmarch::host
