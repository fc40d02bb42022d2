// What the runs of one part say of their look, read once for all that say the same. Host thread
// only.
#pragma once

#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/deck/XmlNames.h"
#include "host/deck/text/CharProps.h"
#include "host/deck/text/ParagraphProps.h"

namespace quillmarch::host::deck {

struct RunFormat {
  std::string raw;  // the whole a:rPr (or a:endParaRPr); empty for none
  CharProps props;
  TextExtras extras;
};
using RunFormatRef = std::shared_ptr<const RunFormat>;

class RunFormats {
 public:
  // `names` and `bytes` belong to the part and outlive the object.
  RunFormats(const XmlNames& names, std::string_view bytes);
  RunFormats(const RunFormats&) = delete;
  RunFormats& operator=(const RunFormats&) = delete;

  // What an element of the part says; null says nothing.
  RunFormatRef OfElement(pugi::xml_node element);
  // What a whole a:rPr says that an edit made.
  RunFormatRef OfText(std::string raw);
  // The same look for a new text: without what was noted about the old one.
  RunFormatRef ForNewText(const RunFormatRef& format);

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const {
      return std::hash<std::string_view>()(key);
    }
  };
  RunFormatRef Read(std::string raw, pugi::xml_node element) const;

  const XmlNames& names_;
  std::string_view bytes_;
  RunFormatRef none_;
  std::unordered_map<std::string, RunFormatRef, Hash, std::equal_to<>> known_;
  std::unordered_map<RunFormatRef, RunFormatRef> forNewText_;
};

}  // namespace quillmarch::host::deck
