#include "host/cli/DeckKind.h"

#include <algorithm>
#include <iterator>

namespace quillmarch::host {

namespace {

struct DeckKind {
  std::string_view ending;
  std::string_view contentType;
  bool macros;
};

constexpr DeckKind kKinds[] = {
    {".pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml",
     false},
    {".potx", "application/vnd.openxmlformats-officedocument.presentationml.template.main+xml",
     false},
    {".ppsx", "application/vnd.openxmlformats-officedocument.presentationml.slideshow.main+xml",
     false},
    {".pptm", "application/vnd.ms-powerpoint.presentation.macroEnabled.main+xml", true},
    {".potm", "application/vnd.ms-powerpoint.template.macroEnabled.main+xml", true},
    {".ppsm", "application/vnd.ms-powerpoint.slideshow.macroEnabled.main+xml", true},
};

const DeckKind* KindUnder(std::string_view ending) {
  const auto* const found =
      std::find_if(std::begin(kKinds), std::end(kKinds),
                   [&](const DeckKind& kind) { return kind.ending == ending; });
  return found == std::end(kKinds) ? nullptr : found;
}

}  // namespace

std::string EndingOf(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return {};
  std::string ending(name.substr(dot));
  for (char& c : ending) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return ending;
}

bool IsDeckEnding(std::string_view ending) {
  return KindUnder(ending) != nullptr;
}

Result<std::string> ContentTypeUnder(std::string_view ending, std::string_view current) {
  const DeckKind* const wanted = KindUnder(ending);
  const auto* const now =
      std::find_if(std::begin(kKinds), std::end(kKinds),
                   [&](const DeckKind& kind) { return kind.contentType == current; });
  if (wanted == nullptr || now == std::end(kKinds)) return std::string(current);
  if (now->macros && !wanted->macros) {
    return Error{ErrorCode::kUnsupported, "the deck may contain macros, which a " +
                                              std::string(ending) + " file cannot hold; use " +
                                              std::string(now->ending)};
  }
  return std::string(wanted->contentType);
}

}  // namespace quillmarch::host
