#include "host/cli/RunOutcomeText.h"

#include <sys/resource.h>

#include <cstdio>
#include <set>

#include "foundation/text/JsonText.h"
#include "foundation/text/ResultCode.h"
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

// "slide 3, "Title 1", row 1, column 2"
std::string PlaceOf(const addin::FailedUnit& unit) {
  std::string place = "slide " + std::to_string(unit.slide) + ", ";
  place += unit.shapeName.empty() ? PlainLine(ToUtf8(unit.label))
                                  : "\"" + PlainLine(ToUtf8(unit.shapeName)) + "\"";
  if (unit.row > 0) {
    place += ", row " + std::to_string(unit.row) + ", column " + std::to_string(unit.column);
  }
  return place;
}

std::string ReasonOf(const addin::FailedUnit& unit) {
  switch (unit.cause) {
    case addin::FailCause::kNotFound:
      return "not written, its shape is gone";
    case addin::FailCause::kPlaceChanged:
      return "not written, another text is there now";
    case addin::FailCause::kUnchanged:
      return "left as it was";
    case addin::FailCause::kNotAnswered:
      return "not translated, no answer came";
    case addin::FailCause::kRefused: {
      if (unit.code == kOk) return "not written, the host refused it";
      char code[16];
      std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(unit.code));
      return std::string("not written, the host refused it (") + code + ")";
    }
    case addin::FailCause::kNotReached:
      break;
  }
  return "not written";
}

std::string LineOf(const addin::FailedUnit& unit) {
  return PlaceOf(unit) + ": " + ReasonOf(unit) + ": \"" +
         Shorten(PlainLine(ToUtf8(unit.sourceText)), kSourceColumns) + "\"";
}

std::string UnitJson(const addin::FailedUnit& unit) {
  std::string json = "{\"slide\":" + std::to_string(unit.slide) +
                     ",\"shape\":" + Quoted(unit.shapeName) + ",\"place\":" + Quoted(unit.label);
  if (unit.row > 0) {
    json += ",\"row\":" + std::to_string(unit.row) + ",\"column\":" + std::to_string(unit.column);
  }
  return json + ",\"text\":" + Quoted(unit.sourceText) +
         ",\"reason\":" + Quoted(std::string_view(ReasonOf(unit))) + "}";
}

std::string UnitsJson(const std::vector<addin::FailedUnit>& units) {
  std::string json = "[";
  for (const addin::FailedUnit& unit : units) json += (json.size() > 1 ? "," : "") + UnitJson(unit);
  return json + "]";
}

}  // namespace

bool ReachedTheDeck(const addin::RunRecord& record) {
  return record.failed.empty() && record.slidesNotReached.empty() && record.notAnswered == 0;
}

std::string OutcomeLine(const DeckJob& job, const addin::RunRecord& record, double seconds) {
  const std::string deck = ShownDeck(job.input);
  const bool same = job.input == job.output;
  if (record.units == 0) {
    return deck + ": there is no text to translate" +
           (same ? "" : "; copied unchanged to " + ShownOutput(job.output));
  }
  std::string causes;
  if (record.unchanged > 0) {
    causes += ", " + std::to_string(record.unchanged) +
              (record.unchanged == 1 ? " left as it was" : " left as they were");
  }
  if (record.notAnswered > 0) causes += ", " + std::to_string(record.notAnswered) + " not answered";
  if (!record.failed.empty())
    causes += ", " + std::to_string(record.failed.size()) + " not written";
  if (!causes.empty()) causes += ",";
  return deck + ": " + Counted(record.changed, "text") + " translated" + causes + " in " +
         Fixed(seconds, 1) + " s" +
         (same ? "; saved in place" : "; saved as " + ShownOutput(job.output));
}

std::vector<std::string> LostTextLines(const addin::RunRecord& record) {
  std::vector<std::string> lines;
  std::set<std::int32_t> named;
  for (const addin::FailedUnit& unit : record.failed) {
    named.insert(unit.slide);
    lines.push_back(LineOf(unit));
  }
  for (const std::int32_t slide : record.slidesNotReached) {
    if (named.count(slide) > 0) continue;
    lines.push_back("slide " + std::to_string(slide) + ": not written");
  }
  return lines;
}

std::vector<std::string> LeftTextLines(const addin::RunRecord& record) {
  std::vector<std::string> lines;
  for (const addin::FailedUnit& unit : record.left) lines.push_back(LineOf(unit));
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
                     ",\"translated\":" + std::to_string(end.saved ? record.changed : 0) +
                     ",\"unchanged\":" + std::to_string(record.unchanged) +
                     ",\"notAnswered\":" + std::to_string(record.notAnswered) +
                     ",\"withoutLetters\":" + std::to_string(record.skipped) +
                     ",\"failures\":" + UnitsJson(record.failed) +
                     ",\"left\":" + UnitsJson(record.left) + ",\"slidesNotWritten\":[";
  for (std::size_t i = 0; i < record.slidesNotReached.size(); ++i) {
    json += (i > 0 ? "," : "") + std::to_string(record.slidesNotReached[i]);
  }
  return json + "]}";
}

}  // namespace quillmarch::host
