#include "service/engines/LanguageDetector.h"

#include <cld2/public/compact_lang_det.h>

#include "service/Utf8.h"
#include "service/engines/LanguageCode.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

DetectedLanguage DetectLanguage(std::string_view text) {
  // Addresses and placeholders say nothing of the language, or English.
  std::string plain;
  std::size_t from = 0;
  for (const LockedSpan& span : FindLockedSpans(text)) {
    plain += text.substr(from, span.begin - from);
    plain += ' ';
    from = span.end;
  }
  plain += text.substr(from);

  DetectedLanguage detected;
  // The detector reads past broken characters, so it gets none.
  plain = ValidUtf8(plain);
  for (std::size_t at = 0; at < plain.size();) {
    if (!IsBlank(NextCharacter(plain, at))) ++detected.letters;
  }
  CLD2::Language languages[3];
  int percents[3];
  int bytes = 0;
  const CLD2::Language best =
      CLD2::DetectLanguageSummary(plain.data(), static_cast<int>(plain.size()), true, languages,
                                  percents, &bytes, &detected.reliable);
  detected.language = ReadLanguageCode(CLD2::LanguageCode(best)).language;
  detected.reliable = detected.reliable && !detected.language.empty();
  return detected;
}

}  // namespace quillmarch::service
