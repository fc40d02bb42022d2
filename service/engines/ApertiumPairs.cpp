#include "service/engines/ApertiumPairs.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>

#include "service/engines/LanguageCode.h"

namespace quillmarch::service {

namespace {

struct Package {
  const char* name;  // after "apertium-"
  const char* a;
  const char* b;
};

// The packages of Debian 12.
constexpr Package kPackages[] = {
    {"eng-spa", "eng", "spa"}, {"eng-cat", "eng", "cat"}, {"en-gl", "eng", "glg"},
    {"fr-es", "fra", "spa"},   {"es-pt", "spa", "por"},   {"spa-ita", "spa", "ita"},
    {"hbs-eng", "hbs", "eng"}, {"rus-ukr", "rus", "ukr"}, {"urd-hin", "urd", "hin"},
    {"afr-nld", "afr", "nld"}, {"arg-cat", "arg", "cat"}, {"bel-rus", "bel", "rus"},
    {"br-fr", "bre", "fra"},   {"cat-ita", "cat", "ita"}, {"cat-srd", "cat", "srd"},
    {"dan-nor", "dan", "nob"}, {"eo-ca", "epo", "cat"},   {"eo-en", "epo", "eng"},
    {"eo-es", "epo", "spa"},   {"eo-fr", "epo", "fra"},   {"es-gl", "spa", "glg"},
    {"es-ro", "spa", "ron"},   {"eu-en", "eus", "eng"},   {"eu-es", "eus", "spa"},
    {"fra-cat", "fra", "cat"}, {"fra-frp", "fra", "frp"}, {"hbs-mkd", "hbs", "mkd"},
    {"hbs-slv", "hbs", "slv"}, {"ind-zlm", "ind", "zlm"}, {"isl-eng", "isl", "eng"},
    {"is-sv", "isl", "swe"},   {"mkd-bul", "mkd", "bul"}, {"mkd-eng", "mkd", "eng"},
    {"nno-nob", "nno", "nob"}, {"oc-es", "oci", "spa"},   {"oci-fra", "oci", "fra"},
    {"pol-szl", "pol", "szl"}, {"por-cat", "por", "cat"}, {"pt-gl", "por", "glg"},
    {"spa-arg", "spa", "arg"}, {"spa-ast", "spa", "ast"}, {"spa-cat", "spa", "cat"},
    {"srd-ita", "srd", "ita"}, {"swe-dan", "swe", "dan"}, {"swe-nor", "swe", "nob"}};

constexpr char kOtherEngine[] = "--engine openai with --openai-url URL and --openai-model NAME";

bool Matches(const std::string& wanted, const std::string& has) {
  return wanted == has || MacroLanguage(wanted) == has;
}

auto Order(const ApertiumPair& pair) {
  return std::tie(pair.source, pair.target, pair.variant);
}

std::string Languages(const std::string& source, const std::string& target) {
  return "from " + LanguageName(source) + " to " + LanguageName(target);
}

}  // namespace

std::vector<ApertiumPair> FindApertiumPairs(const std::string& modesFolder) {
  std::vector<ApertiumPair> pairs;
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator(modesFolder, failure)) {
    if (entry.path().extension() != ".mode") continue;
    const std::string stem = entry.path().stem().string();
    const std::size_t cut = stem.find('-');
    // A second hyphen marks a pipeline cut short, for whoever debugs the pair.
    if (cut == std::string::npos || stem.find('-', cut + 1) != std::string::npos) continue;
    const LanguageCode source = ReadLanguageCode(stem.substr(0, cut));
    const LanguageCode target = ReadLanguageCode(stem.substr(cut + 1));
    if (source.language.empty() || target.language.empty() || !source.region.empty()) continue;
    pairs.push_back({source.language, target.language, target.region, entry.path().string()});
  }
  std::sort(pairs.begin(), pairs.end(), [](const ApertiumPair& a, const ApertiumPair& b) {
    if (Order(a) != Order(b)) return Order(a) < Order(b);
    return std::pair(b.modeFile.size(), a.modeFile) < std::pair(a.modeFile.size(), b.modeFile);
  });
  pairs.erase(std::unique(pairs.begin(), pairs.end(),
                          [](const ApertiumPair& a, const ApertiumPair& b) {
                            return Order(a) == Order(b);
                          }),
              pairs.end());
  return pairs;
}

const ApertiumPair* ChooseApertiumPair(const std::vector<ApertiumPair>& pairs,
                                       const std::string& source, const std::string& target) {
  const LanguageCode from = ReadLanguageCode(source);
  const LanguageCode to = ReadLanguageCode(target);
  if (from.language.empty() || to.language.empty()) return nullptr;
  const ApertiumPair* plain = nullptr;
  for (const ApertiumPair& pair : pairs) {
    if (!Matches(from.language, pair.source) || !Matches(to.language, pair.target)) continue;
    if (!to.region.empty() && pair.variant == to.region) return &pair;
    if (plain == nullptr || pair.variant.empty()) plain = &pair;
  }
  return plain;
}

std::string AdviseOnPair(const std::vector<ApertiumPair>& pairs, const std::string& source,
                         const std::string& target) {
  const bool detect = source == "auto";
  const LanguageCode from = ReadLanguageCode(source);
  const LanguageCode to = ReadLanguageCode(target);
  const bool knowsSource = detect || !from.language.empty();
  if (!knowsSource || to.language.empty()) {
    return "\"" + (knowsSource ? target : source) +
           "\" is not a language that the offline engine knows; use a code such as es or pt-BR, "
           "or " +
           kOtherEngine + ".";
  }
  const std::string what =
      detect ? "to " + LanguageName(to.language) : Languages(from.language, to.language);
  // English is the likeliest source when nobody named one.
  const std::string likely = detect ? "eng" : from.language;
  for (const Package& package : kPackages) {
    const bool fits = (Matches(likely, package.a) && Matches(to.language, package.b)) ||
                      (Matches(likely, package.b) && Matches(to.language, package.a));
    if (!fits) continue;
    const std::string name = std::string("apertium-") + package.name;
    if (ChooseApertiumPair(pairs, to.language, likely) != nullptr) {
      return "The package " + name + " does not translate " + what + "; use " + kOtherEngine + ".";
    }
    return "No installed package translates " + what + " offline: run \"sudo apt-get install " +
           name + "\" or use " + kOtherEngine + ".";
  }
  return "There is no offline translation " + what + "; use " + kOtherEngine + ".";
}

}  // namespace quillmarch::service
