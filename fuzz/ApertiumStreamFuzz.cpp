// Texts on their way to the offline pipeline and back, and whatever a pipeline answers: no crash,
// guarded pieces survive, and what comes back unchanged is the text itself.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "service/Utf8.h"
#include "service/engines/ApertiumStream.h"
#include "service/engines/ApertiumText.h"
#include "service/engines/LetterCase.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

namespace {

using Strings = std::vector<std::string>;

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  FromApertium(bytes);

  std::string text = ValidUtf8(bytes);
  std::erase(text, '\0');
  const std::string stream = ToApertium(text);
  Require(stream.find('\0') == std::string::npos);
  Require(FromApertium(stream) == text);
  Require(InCapitals(InCapitals(text)) == InCapitals(text));

  const std::vector<EngineTerm> terms = {{"Plan", "Proyecto", ""}, {"the", "", ""}};
  Strings out;
  const ApertiumRun echo = [](const Strings& streams, Strings& to) {
    to = streams;
    return true;
  };
  Require(TranslateTexts({text}, {}, echo, out));
  // A line in capitals is put into capitals again, which changes nothing.
  Require(out.at(0) == text);
  // A pipeline that answers with anything at all.
  const ApertiumRun mad = [&](const Strings& streams, Strings& to) {
    to.assign(streams.size(), bytes);
    return true;
  };
  const std::string guarded = text + " [[QM_A_1]]";
  Require(TranslateTexts({guarded}, terms, mad, out));
  if (HasTextToTranslate(guarded)) {
    Require(out.at(0).find("[[QM_A_1]]") != std::string::npos);
  }
  return 0;
}

}  // namespace quillmarch::service
