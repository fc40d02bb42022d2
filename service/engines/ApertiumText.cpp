#include "service/engines/ApertiumText.h"

#include <cstddef>

#include "service/Utf8.h"
#include "service/engines/ApertiumStream.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

namespace {

bool HasLetter(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, at);
    if ((c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= 0xC0 && !IsBlank(c))) {
      return true;
    }
  }
  return false;
}

std::string InLower(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return out;
}

// A word for the n-th locked piece: letters only, so that it is not cut, and of one case but for
// its first letter, which the pipeline may change.
std::string StandIn(const std::string& stem, std::size_t n) {
  std::string word = stem;
  do {
    word += static_cast<char>('a' + n % 20);
    n /= 20;
  } while (n > 0);
  return word + "zx";
}

struct Guarded {
  std::string text;
  std::vector<std::string> standIns;
  std::vector<std::string> locked;
};

Guarded Guard(std::string_view text) {
  Guarded guarded;
  std::string stem = "Qxz";
  while (InLower(text).find(InLower(stem)) != std::string::npos) stem += 'q';
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    guarded.standIns.push_back(StandIn(stem, guarded.locked.size()));
    guarded.locked.emplace_back(text.substr(span.begin, span.end - span.begin));
    guarded.text += text.substr(from, span.begin - from);
    guarded.text += guarded.standIns.back();
    from = span.end;
  }
  guarded.text += text.substr(from);
  return guarded;
}

// False when a stand-in is not there exactly once.
bool Restore(const Guarded& guarded, std::string& text) {
  for (std::size_t i = 0; i < guarded.locked.size(); ++i) {
    const std::string lower = InLower(text);
    const std::string wanted = InLower(guarded.standIns[i]);
    const std::size_t at = lower.find(wanted);
    if (at == std::string::npos || lower.find(wanted, at + 1) != std::string::npos) return false;
    text.replace(at, wanted.size(), guarded.locked[i]);
  }
  return true;
}

// The text cut at its locked pieces; the pieces between are translated each for itself.
bool TranslateInPieces(std::string_view text, const ApertiumRun& run, std::string& translation) {
  std::vector<std::string> free;
  std::vector<std::string> locked;
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    free.emplace_back(text.substr(from, span.begin - from));
    locked.emplace_back(text.substr(span.begin, span.end - span.begin));
    from = span.end;
  }
  free.emplace_back(text.substr(from));
  std::vector<std::string> translated;
  if (!TranslateTexts(free, run, translated)) return false;
  translation.clear();
  for (std::size_t i = 0; i < free.size(); ++i) {
    translation += translated[i];
    if (i < locked.size()) translation += locked[i];
  }
  return true;
}

}  // namespace

bool HasTextToTranslate(std::string_view text) {
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    if (HasLetter(text.substr(from, span.begin - from))) return true;
    from = span.end;
  }
  return HasLetter(text.substr(from));
}

bool TranslateTexts(const std::vector<std::string>& texts, const ApertiumRun& run,
                    std::vector<std::string>& translations) {
  translations = texts;
  std::vector<std::size_t> places;
  std::vector<Guarded> guarded;
  std::vector<std::string> streams;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (!HasTextToTranslate(texts[i])) continue;
    places.push_back(i);
    guarded.push_back(Guard(TrimBlanks(texts[i]).core));
    streams.push_back(ToApertium(guarded.back().text));
  }
  if (places.empty()) return true;
  std::vector<std::string> out;
  if (!run(streams, out)) return false;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const TrimmedText parts = TrimBlanks(texts[places[i]]);
    std::string core = FromApertium(out[i]);
    if (!Restore(guarded[i], core) && !TranslateInPieces(parts.core, run, core)) return false;
    std::string& translation = translations[places[i]];
    translation = parts.leading;
    translation += TrimBlanks(core).core;
    translation += parts.trailing;
  }
  return true;
}

}  // namespace quillmarch::service
