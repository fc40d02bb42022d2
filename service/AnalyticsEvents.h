// POST /v1/analytics/events without its HTTP: what add-ins tell of themselves.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillmarch::service {

struct EventsAnswer {
  int status = 200;
  // Never empty: an add-in takes an answer without text for a failure.
  std::string body;
  // One for each event, for the log: name, outcome, versions and properties in printable ASCII,
  // and never who it was.
  std::vector<std::string> lines;
};

inline constexpr std::size_t kMaxEventsOfARequest = 50;
// Anybody may send events, so they are kept small.
inline constexpr std::size_t kMaxEventsBytes = 64u << 10;

// All events of a body are taken, or none. Never throws for what a client sends.
EventsAnswer AnswerEvents(const std::string& body);

}  // namespace quillmarch::service
