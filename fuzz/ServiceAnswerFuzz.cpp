// Answers of the service, whatever they hold: no crash, and what callers build on holds.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "foundation/text/JsonText.h"
#include "translate/ResponseChecks.h"

namespace quillmarch::host {

using namespace addin;

namespace {

constexpr std::size_t kShortestWholePlaceholder = 9;

void Require(bool holds) {
  if (!holds) std::abort();
}

void RequireSoundResult(const TranslateBatchResult& result, std::size_t texts) {
  if (result.ok) {
    Require(result.translations.size() == texts);
    Require(result.unitIds.empty() || result.unitIds.size() == texts);
    Require(result.code.empty() && result.message.empty());
  } else {
    Require(result.translations.empty() && result.unitIds.empty());
    Require(!result.message.empty());
  }
}

std::vector<Wide> Pieces(const Wide& text) {
  std::vector<Wide> pieces(1);
  for (const char16_t unit : text) {
    if (unit == 0) {
      pieces.emplace_back();
    } else {
      pieces.back() += unit;
    }
  }
  return pieces;
}

// A good answer's translations come back as they are, whatever their text.
void RequireRoundTrip(const std::vector<Wide>& translations) {
  Wide body = u"{\"translations\":[";
  for (const Wide& text : translations) body += u"\"" + JsonEscape(text) + u"\",";
  body.back() = u']';
  body += u'}';
  const TranslateBatchResult result = ReadTranslateResponse(200, body, u"", translations);
  Require(result.ok && result.translations == translations);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Wide text = ToWide({reinterpret_cast<const char*>(data), size});
  for (const std::uint32_t status : {0u, 200u, 401u, 402u, 500u}) {
    for (const std::size_t count : {1u, 2u}) {
      RequireSoundResult(ReadTranslateResponse(status, text, u"", std::vector<Wide>(count)), count);
    }
  }
  Require(ReadErrorMessage(text).size() <= text.size());

  const std::int32_t placeholders = CountPlaceholders(text);
  Require(placeholders >= 0);
  Require(static_cast<std::size_t>(placeholders) * kShortestWholePlaceholder <= text.size());
  Require(CountPlaceholders(text + u".[[QM_A_1]]") == placeholders + 1);

  RequireRoundTrip(Pieces(text));
  return 0;
}

}  // namespace quillmarch::host
