// [Content_Types].xml: which kind of content each part holds.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/package/xml/Splice.h"

namespace quillmarch::host {

inline constexpr std::string_view kContentTypesPart = "[Content_Types].xml";

class ContentTypes {
 public:
  // `xml` is well-formed. False when it is no table of content types.
  bool Parse(std::string_view xml);
  // The edits that give a part a content type of its own, or take it away; none where nothing has
  // to change. `xml` is what was parsed last.
  std::vector<Edit> Adding(std::string_view xml, std::string_view name,
                           std::string_view type) const;
  std::vector<Edit> Removing(std::string_view xml, std::string_view name) const;
  // By override, else by extension; empty when neither knows the part.
  std::string Of(std::string_view name) const;

 private:
  std::unordered_map<std::string, std::string> overrides_;  // by PartKey
  std::unordered_map<std::string, std::string> defaults_;   // by extension in small letters
};

// The table with the part's content type changed to `type`; `xml` is well-formed. All else keeps
// its bytes.
std::string WithContentType(std::string_view xml, std::string_view part, std::string_view type);

}  // namespace quillmarch::host
