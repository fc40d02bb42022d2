#include "service/engines/PseudoEngine.h"

#include <cmath>
#include <utility>
#include <vector>

#include "service/Utf8.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

namespace {

std::u32string Decode(std::string_view text) {
  std::u32string out;
  for (std::size_t at = 0; at < text.size();) out += NextCharacter(text, at);
  return out;
}

// Han, kana, bopomofo, Thai, Lao, Myanmar, Khmer.
bool WritesWithoutBlanks(char32_t c) {
  return (c >= 0x0E00 && c <= 0x0EFF) || (c >= 0x1000 && c <= 0x109F) ||
         (c >= 0x1780 && c <= 0x17FF) || (c >= 0x2E80 && c <= 0x31FF) ||
         (c >= 0x3400 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) || c >= 0x20000;
}

std::vector<std::u32string> Words(std::string_view core) {
  std::vector<std::u32string> words;
  std::size_t begin = 0;
  const auto take = [&](std::size_t end) {
    const std::string_view word = core.substr(begin, end - begin);
    if (!word.empty() && FindLockedSpans(word).empty()) words.push_back(Decode(word));
  };
  for (std::size_t at = 0; at < core.size();) {
    const std::size_t here = at;
    if (!IsBlank(NextCharacter(core, at))) continue;
    take(here);
    begin = at;
  }
  take(core.size());
  return words;
}

std::string Grown(std::string_view core, double growth) {
  std::u32string text = Decode(core);
  const auto wanted =
      static_cast<std::size_t>(std::llround(growth * static_cast<double>(text.size())));
  const std::vector<std::u32string> words = Words(core);
  if (words.empty()) return std::string(core);
  bool blanks = true;
  for (const char32_t c : words[0]) blanks = blanks && !WritesWithoutBlanks(c);
  blanks = blanks || words.size() > 1;
  for (std::size_t next = 0; text.size() < wanted; next = (next + 1) % words.size()) {
    // A space at the very end would be lost in a frame, so a letter takes its place.
    if (blanks && wanted - text.size() > 1) text += U' ';
    text += words[next].substr(0, wanted - text.size());
  }
  std::string out;
  for (const char32_t c : text) AppendUtf8(out, c);
  return out;
}

class PseudoEngine : public Engine {
 public:
  explicit PseudoEngine(double growth) : growth_(growth) {}
  const char* name() const override { return "pseudo"; }
  EngineResult Translate(const EngineRequest& request, const std::atomic<bool>&) override {
    EngineResult result;
    result.ok = true;
    result.translations.reserve(request.texts.size());
    for (const std::string& text : request.texts) {
      result.translations.push_back(PseudoTranslate(text, growth_));
    }
    return result;
  }

 private:
  double growth_;
};

}  // namespace

std::string PseudoTranslate(std::string_view text, double growth) {
  const TrimmedText parts = TrimBlanks(text);
  std::string out = "\xE2\x9F\xA6";
  out += parts.leading;
  if (growth > 1) {
    out += Grown(parts.core, growth);
  } else {
    out += parts.core;
  }
  out += parts.trailing;
  out += "\xE2\x9F\xA7";
  return out;
}

std::unique_ptr<Engine> MakePseudoEngine(double growth) {
  return std::make_unique<PseudoEngine>(growth);
}

}  // namespace quillmarch::service
