// Which pairs of languages the installed Apertium packages translate.
#pragma once

#include <string>
#include <vector>

namespace quillmarch::service {

struct ApertiumPair {
  std::string source;    // ISO 639-3
  std::string target;    // ISO 639-3
  std::string variant;   // of the target ("BR" of pt_BR, "VALENCIA"), upper case; or empty
  std::string modeFile;  // path of the pair's pipeline
};

// Sorted; pairs with the same languages and variant appear once, the newer package's (with codes
// of three letters) winning. Empty when there is no such folder.
std::vector<ApertiumPair> FindApertiumPairs(const std::string& modesFolder);

// The pair for two languages as people write them; the target's region chooses a variant where
// there is one. Null when no pair fits.
const ApertiumPair* ChooseApertiumPair(const std::vector<ApertiumPair>& pairs,
                                       const std::string& source, const std::string& target);

// One sentence that says how to get a pair that is not installed. `source` may be "auto".
std::string AdviseOnPair(const std::vector<ApertiumPair>& pairs, const std::string& source,
                         const std::string& target);

}  // namespace quillmarch::service
