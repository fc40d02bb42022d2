#include "service/engines/ApertiumText.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "service/Utf8.h"
#include "service/engines/ApertiumStream.h"
#include "service/engines/LetterCase.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

namespace {

// A piece of a text that the pipeline does not get.
struct Guard {
  std::size_t begin = 0;  // bytes
  std::size_t end = 0;
  std::string replacement;  // what takes its place afterwards
};

// Longest first.
using Terms = std::vector<const EngineTerm*>;

bool HasLetter(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, at);
    if ((c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= 0xC0 && !IsBlank(c))) {
      return true;
    }
  }
  return false;
}

// Letters and digits; characters beyond ASCII count byte by byte.
bool IsWordByte(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string InLower(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return out;
}

Terms Sorted(const std::vector<EngineTerm>& glossary) {
  Terms terms;
  for (const EngineTerm& term : glossary) {
    if (!TrimBlanks(term.source).core.empty()) terms.push_back(&term);
  }
  std::stable_sort(terms.begin(), terms.end(), [](const EngineTerm* a, const EngineTerm* b) {
    return a->source.size() > b->source.size();
  });
  return terms;
}

bool StandsByItself(std::string_view text, std::size_t at, std::size_t size) {
  const bool before = at > 0 && IsWordByte(text[at - 1]) && IsWordByte(text[at]);
  const bool after =
      at + size < text.size() && IsWordByte(text[at + size - 1]) && IsWordByte(text[at + size]);
  return !before && !after;
}

// Adds the terms between `begin` and `end`, the longest first where they overlap.
void AddTerms(std::string_view text, const Terms& terms, std::size_t begin, std::size_t end,
              std::vector<Guard>& guards) {
  std::map<std::size_t, Guard> found;  // by begin
  const auto isFree = [&](std::size_t at, std::size_t size) {
    const auto next = found.lower_bound(at);
    if (next != found.end() && next->first < at + size) return false;
    return next == found.begin() || std::prev(next)->second.end <= at;
  };
  const std::string_view part = text.substr(0, end);
  for (const EngineTerm* term : terms) {
    const std::size_t size = term->source.size();
    for (std::size_t at = part.find(term->source, begin); at != std::string_view::npos;
         at = part.find(term->source, at + 1)) {
      if (!StandsByItself(text, at, size) || !isFree(at, size)) continue;
      found[at] = {at, at + size, term->target.empty() ? term->source : term->target};
    }
  }
  for (auto& [at, guard] : found) guards.push_back(std::move(guard));
}

void AddLongWords(std::string_view text, std::size_t begin, std::size_t end,
                  std::vector<Guard>& guards) {
  std::size_t word = begin;
  for (std::size_t at = begin; at <= end;) {
    const std::size_t here = at;
    if (at < end && !IsBlank(NextCharacter(text, at))) continue;
    if (here - word > kLongestWord) {
      guards.push_back({word, here, std::string(text.substr(word, here - word))});
    }
    if (here == end) break;
    word = at;
  }
}

// In order, without overlap: locked pieces, between them words that are too long, between those
// the terms.
std::vector<Guard> FindGuards(std::string_view text, const Terms& terms) {
  std::vector<Guard> fixed;
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    AddLongWords(text, from, span.begin, fixed);
    fixed.push_back(
        {span.begin, span.end, std::string(text.substr(span.begin, span.end - span.begin))});
    from = span.end;
  }
  AddLongWords(text, from, text.size(), fixed);
  if (terms.empty()) return fixed;

  std::vector<Guard> all;
  from = 0;
  for (Guard& guard : fixed) {
    AddTerms(text, terms, from, guard.begin, all);
    from = guard.end;
    all.push_back(std::move(guard));
  }
  AddTerms(text, terms, from, text.size(), all);
  return all;
}

constexpr std::size_t kStandInLetters = 20;
constexpr std::string_view kStandInEnd = "zx";

// A word for the n-th guarded piece: letters only, so that it is not cut, and of one case but for
// its first letter, which the pipeline may change.
std::string StandIn(const std::string& stem, std::size_t n) {
  std::string word = stem;
  do {
    word += static_cast<char>('a' + n % kStandInLetters);
    n /= kStandInLetters;
  } while (n > 0);
  return word.append(kStandInEnd);
}

struct Guarded {
  std::string text;
  // What is between the guarded pieces, which say nothing of a line's case.
  std::string free;
  std::vector<Guard> guards;
  std::string stem;  // of the stand-ins
};

Guarded GuardText(std::string_view text, const Terms& terms) {
  Guarded guarded;
  guarded.guards = FindGuards(text, terms);
  guarded.stem = "Qxz";
  const std::string lower = InLower(text);
  while (lower.find(InLower(guarded.stem)) != std::string::npos) guarded.stem += 'q';
  std::size_t from = 0;
  for (std::size_t i = 0; i < guarded.guards.size(); ++i) {
    const std::string_view before = text.substr(from, guarded.guards[i].begin - from);
    guarded.text += before;
    guarded.text += StandIn(guarded.stem, i);
    guarded.free += before;
    from = guarded.guards[i].end;
  }
  guarded.text += text.substr(from);
  guarded.free += text.substr(from);
  return guarded;
}

// False when a stand-in is not there exactly once.
bool Restore(const Guarded& guarded, std::string& text) {
  if (guarded.guards.empty()) return true;
  const std::string lower = InLower(text);
  const std::string stem = InLower(guarded.stem);
  std::vector<bool> seen(guarded.guards.size());
  std::size_t count = 0;
  std::string out;
  std::size_t from = 0;
  for (std::size_t at = lower.find(stem); at != std::string::npos; at = lower.find(stem, from)) {
    std::size_t end = at + stem.size();
    std::size_t number = 0;
    std::size_t unit = 1;
    for (; end < lower.size() && lower[end] >= 'a' &&
           lower[end] < static_cast<char>('a' + kStandInLetters) && number < seen.size();
         ++end) {
      number += unit * static_cast<std::size_t>(lower[end] - 'a');
      unit *= kStandInLetters;
    }
    const bool whole = unit > 1 && lower.compare(end, kStandInEnd.size(), kStandInEnd) == 0;
    if (!whole || number >= seen.size() || seen[number]) return false;
    seen[number] = true;
    ++count;
    out += text.substr(from, at - from);
    out += guarded.guards[number].replacement;
    from = end + kStandInEnd.size();
  }
  if (count != seen.size()) return false;
  text = out + text.substr(from);
  return true;
}

// The text cut at its guarded pieces; the pieces between are translated each for itself.
bool TranslateInPieces(std::string_view text, const Guarded& guarded, const ApertiumRun& run,
                       std::string& translation) {
  std::vector<std::string> free;
  std::size_t from = 0;
  for (const Guard& guard : guarded.guards) {
    free.emplace_back(text.substr(from, guard.begin - from));
    from = guard.end;
  }
  free.emplace_back(text.substr(from));
  std::vector<std::string> translated;
  if (!TranslateTexts(free, {}, run, translated)) return false;
  translation.clear();
  for (std::size_t i = 0; i < free.size(); ++i) {
    translation += translated[i];
    if (i < guarded.guards.size()) translation += guarded.guards[i].replacement;
  }
  return true;
}

}  // namespace

bool HasTooLongWord(std::string_view text) {
  std::vector<Guard> guards;
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    AddLongWords(text, from, span.begin, guards);
    from = span.end;
  }
  AddLongWords(text, from, text.size(), guards);
  return !guards.empty();
}

bool HasTextToTranslate(std::string_view text) {
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    if (HasLetter(text.substr(from, span.begin - from))) return true;
    from = span.end;
  }
  return HasLetter(text.substr(from));
}

bool TranslateTexts(const std::vector<std::string>& texts, const std::vector<EngineTerm>& glossary,
                    const ApertiumRun& run, std::vector<std::string>& translations) {
  const Terms terms = Sorted(glossary);
  translations = texts;
  std::vector<std::size_t> places;
  std::vector<Guarded> guarded;
  std::vector<std::string> streams;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (!HasTextToTranslate(texts[i])) continue;
    places.push_back(i);
    guarded.push_back(GuardText(TrimBlanks(texts[i]).core, terms));
    streams.push_back(ToApertium(guarded.back().text));
  }
  if (places.empty()) return true;
  std::vector<std::string> out;
  if (!run(streams, out)) return false;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const TrimmedText parts = TrimBlanks(texts[places[i]]);
    std::string core = KeepCapitals(guarded[i].free, FromApertium(out[i]));
    if (!Restore(guarded[i], core) && !TranslateInPieces(parts.core, guarded[i], run, core)) {
      return false;
    }
    std::string& translation = translations[places[i]];
    translation = parts.leading;
    translation += TrimBlanks(core).core;
    translation += parts.trailing;
  }
  return true;
}

}  // namespace quillmarch::service
