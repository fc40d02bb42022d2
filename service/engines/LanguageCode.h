// Languages as people write them: "es", "es-ES", "spa", "Spanish".
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::service {

struct LanguageCode {
  std::string language;  // ISO 639-3 in lower case; empty when the text names no known language
  std::string region;    // as written after the language ("BR" of "pt-BR"), upper case; or empty
};

// Reads a BCP 47 tag, an ISO 639-1 or 639-3 code or an English name, in any case, with - or _.
// Chinese in its tags' scripts and regions is one language.
LanguageCode ReadLanguageCode(std::string_view text);

// The English name of a code of ours ("spa": "Spanish"); the code itself when it is unknown.
std::string LanguageName(const std::string& language);

// The language that `language` is counted under where translators keep one set of data for
// several ("srp": "hbs"); `language` itself where there is none.
std::string MacroLanguage(const std::string& language);

}  // namespace quillmarch::service
