#include "host/cli/ProgressLine.h"

#include <algorithm>
#include <cmath>

#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kNarrowestBar = 10;
constexpr std::size_t kWidestBar = 30;
constexpr std::size_t kShortestName = 12;
// Before that a guess from the first answers jumps about.
constexpr double kEarliestGuessSeconds = 1.0;

double Share(const RunProgress& progress) {
  if (progress.texts <= 0) return 0.0;
  return std::clamp(static_cast<double>(progress.textsDone) / progress.texts, 0.0, 1.0);
}

std::string Bar(double share, std::size_t columns) {
  const auto filled = static_cast<std::size_t>(share * static_cast<double>(columns));
  return std::string("[").append(filled, '#').append(columns - filled, '.').append("]");
}

std::string TimeLeft(const RunProgress& progress) {
  const double share = Share(progress);
  if (progress.seconds < kEarliestGuessSeconds || share <= 0.0 || share >= 1.0) return {};
  const double left = progress.seconds * (1.0 - share) / share;
  return std::string(", ").append(FormatDuration(left)).append(" left");
}

}  // namespace

std::string FormatDuration(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::ceil(std::max(seconds, 0.0)));
  const auto two = [](std::int64_t n) {
    return std::string(n < 10 ? "0" : "").append(std::to_string(n));
  };
  const std::int64_t hours = whole / 3600;
  const std::int64_t minutes = whole / 60 % 60;
  if (hours > 0) return std::to_string(hours) + ":" + two(minutes) + ":" + two(whole % 60);
  return std::to_string(minutes) + ":" + two(whole % 60);
}

std::string FormatProgress(const RunProgress& progress, std::size_t columns) {
  const std::string lead = progress.place.empty() ? std::string() : progress.place + " ";
  if (progress.texts <= 0) return Shorten(lead + progress.deck + ": reading", columns);

  const std::string percent = std::to_string(static_cast<int>(Share(progress) * 100.0)) + "%";
  if (columns < percent.size()) return {};
  const std::string counts = std::to_string(progress.textsDone) + "/" +
                             std::to_string(progress.texts) + " texts on " +
                             Counted(progress.slides, "slide") + TimeLeft(progress);
  if (counts.size() > columns) return percent;

  const std::size_t name = DisplayWidth(progress.deck);
  const std::size_t nameWidth = std::min(name, std::max(kShortestName, columns / 3));
  const std::size_t rest = columns - counts.size();
  // The name and the bar are each followed by a space, and the bar has its brackets.
  if (rest >= lead.size() + nameWidth + kNarrowestBar + 4) {
    const std::size_t barWidth = std::min(kWidestBar, rest - lead.size() - nameWidth - 4);
    return lead + ShortenFront(progress.deck, nameWidth) + " " + Bar(Share(progress), barWidth) +
           " " + counts;
  }
  if (rest >= lead.size() + std::min(name, kShortestName) + 1) {
    return lead + ShortenFront(progress.deck, std::min(name, rest - lead.size() - 1)) + " " +
           counts;
  }
  return rest >= lead.size() ? lead + counts : counts;
}

}  // namespace quillmarch::host
