#include "service/engines/LanguageCode.h"

#include <algorithm>
#include <iterator>

namespace quillmarch::service {

namespace {

struct Language {
  const char* code;  // ISO 639-3
  const char* two;   // ISO 639-1, or the code again
  const char* name;
  const char* alias;  // another code in use, or empty
};

// What the offline pairs and the language detector know, and what decks are written in.
constexpr Language kLanguages[] = {{"afr", "af", "Afrikaans", ""},
                                   {"ara", "ar", "Arabic", ""},
                                   {"arg", "an", "Aragonese", ""},
                                   {"ast", "ast", "Asturian", ""},
                                   {"aze", "az", "Azerbaijani", ""},
                                   {"bel", "be", "Belarusian", ""},
                                   {"ben", "bn", "Bengali", ""},
                                   {"bos", "bs", "Bosnian", ""},
                                   {"bre", "br", "Breton", ""},
                                   {"bul", "bg", "Bulgarian", ""},
                                   {"cat", "ca", "Catalan", ""},
                                   {"ces", "cs", "Czech", "cze"},
                                   {"cym", "cy", "Welsh", "wel"},
                                   {"dan", "da", "Danish", ""},
                                   {"deu", "de", "German", "ger"},
                                   {"ell", "el", "Greek", "gre"},
                                   {"eng", "en", "English", ""},
                                   {"epo", "eo", "Esperanto", ""},
                                   {"est", "et", "Estonian", ""},
                                   {"eus", "eu", "Basque", "baq"},
                                   {"fas", "fa", "Persian", "per"},
                                   {"fin", "fi", "Finnish", ""},
                                   {"fra", "fr", "French", "fre"},
                                   {"frp", "frp", "Arpitan", ""},
                                   {"gle", "ga", "Irish", ""},
                                   {"glg", "gl", "Galician", ""},
                                   {"hbs", "sh", "Serbo-Croatian", ""},
                                   {"heb", "he", "Hebrew", "iw"},
                                   {"hin", "hi", "Hindi", ""},
                                   {"hrv", "hr", "Croatian", ""},
                                   {"hun", "hu", "Hungarian", ""},
                                   {"hye", "hy", "Armenian", "arm"},
                                   {"ind", "id", "Indonesian", "in"},
                                   {"isl", "is", "Icelandic", "ice"},
                                   {"ita", "it", "Italian", ""},
                                   {"jav", "jv", "Javanese", "jw"},
                                   {"jpn", "ja", "Japanese", ""},
                                   {"kat", "ka", "Georgian", "geo"},
                                   {"kaz", "kk", "Kazakh", ""},
                                   {"khm", "km", "Khmer", ""},
                                   {"kor", "ko", "Korean", ""},
                                   {"lao", "lo", "Lao", ""},
                                   {"lav", "lv", "Latvian", ""},
                                   {"lit", "lt", "Lithuanian", ""},
                                   {"mkd", "mk", "Macedonian", "mac"},
                                   {"mlt", "mt", "Maltese", ""},
                                   {"mon", "mn", "Mongolian", ""},
                                   {"msa", "ms", "Malay", "may"},
                                   {"mya", "my", "Burmese", "bur"},
                                   {"nld", "nl", "Dutch", "dut"},
                                   {"nno", "nn", "Nynorsk", ""},
                                   {"nob", "nb", "Bokmal", ""},
                                   {"nor", "no", "Norwegian", ""},
                                   {"oci", "oc", "Occitan", ""},
                                   {"pol", "pl", "Polish", ""},
                                   {"por", "pt", "Portuguese", ""},
                                   {"ron", "ro", "Romanian", "rum"},
                                   {"rus", "ru", "Russian", ""},
                                   {"slk", "sk", "Slovak", "slo"},
                                   {"slv", "sl", "Slovenian", ""},
                                   {"spa", "es", "Spanish", ""},
                                   {"sqi", "sq", "Albanian", "alb"},
                                   {"srd", "sc", "Sardinian", ""},
                                   {"srp", "sr", "Serbian", ""},
                                   {"swa", "sw", "Swahili", ""},
                                   {"swe", "sv", "Swedish", ""},
                                   {"szl", "szl", "Silesian", ""},
                                   {"tam", "ta", "Tamil", ""},
                                   {"tat", "tt", "Tatar", ""},
                                   {"tel", "te", "Telugu", ""},
                                   {"tgl", "tl", "Tagalog", "fil"},
                                   {"tha", "th", "Thai", ""},
                                   {"tur", "tr", "Turkish", ""},
                                   {"ukr", "uk", "Ukrainian", ""},
                                   {"urd", "ur", "Urdu", ""},
                                   {"uzb", "uz", "Uzbek", ""},
                                   {"vie", "vi", "Vietnamese", ""},
                                   {"zho", "zh", "Chinese", "chi"},
                                   {"zlm", "zlm", "Colloquial Malay", ""}};

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

std::string InLower(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), Lower);
  return out;
}

const Language* Find(const std::string& lower, bool byName) {
  const auto* found =
      std::find_if(std::begin(kLanguages), std::end(kLanguages), [&](const Language& language) {
        if (byName) return InLower(language.name) == lower;
        return lower == language.code || lower == language.two ||
               (!lower.empty() && lower == language.alias);
      });
  return found == std::end(kLanguages) ? nullptr : found;
}

}  // namespace

LanguageCode ReadLanguageCode(std::string_view text) {
  if (const Language* named = Find(InLower(text), true)) return {named->code, ""};
  const std::size_t cut = text.find_first_of("-_");
  const Language* language = Find(InLower(text.substr(0, cut)), false);
  if (language == nullptr) return {};
  LanguageCode code{language->code, ""};
  if (cut != std::string_view::npos) code.region = text.substr(cut + 1);
  std::transform(code.region.begin(), code.region.end(), code.region.begin(), Upper);
  return code;
}

std::string LanguageName(const std::string& language) {
  const Language* found = Find(language, false);
  return found != nullptr ? found->name : language;
}

std::string MacroLanguage(const std::string& language) {
  for (const char* one : {"bos", "hrv", "srp"}) {
    if (language == one) return "hbs";
  }
  if (language == "nor") return "nob";
  return language;
}

}  // namespace quillmarch::service
