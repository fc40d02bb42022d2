#include <cstdlib>
#include <string_view>

#include "foundation/system/SystemLanguage.h"

namespace quillmarch {

namespace {

struct LocaleLanguage {
  std::string_view locale;  // how the locale's name begins
  std::uint32_t id;
};

// The more telling names first.
constexpr LocaleLanguage kLocales[] = {
    {"zh_TW", 1028}, {"zh_HK", 3076}, {"zh_MO", 5124}, {"zh", 2052}, {"ar", 1025}, {"de", 1031},
    {"en", 1033},    {"es", 3082},    {"fr", 1036},    {"ja", 1041}, {"ko", 1042}, {"ru", 1049},
    {"th", 1054},    {"id", 1057},    {"vi", 1066},    {"ms", 1086},
};

}  // namespace

std::uint32_t SystemLanguageId() {
  // The order in which a message's language is looked up.
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == '\0') continue;
    for (const LocaleLanguage& entry : kLocales) {
      if (std::string_view(value).starts_with(entry.locale)) return entry.id;
    }
    return 0;
  }
  return 0;
}

}  // namespace quillmarch
