// Answers of a model's server, whatever they hold: no crash, and what is accepted is whole.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "service/engines/ChatTranslation.h"
#include "service/engines/LockedSpans.h"

namespace quillmarch::service {

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string body(reinterpret_cast<const char*>(data), size);
  for (const std::vector<std::string>& texts :
       {std::vector<std::string>{"one"}, {"one", "two [[QM_A_1]]"}}) {
    const auto read = ReadChatAnswer(body, texts);
    if (!read) {
      Require(!read.error().words.empty());
      continue;
    }
    Require(read->size() == texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
      Require(CountLockedPlaceholders((*read)[i]) == CountLockedPlaceholders(texts[i]));
    }
  }
  const std::string said = ServersOwnSentence(body);
  Require(said.find('\n') == std::string::npos);
  return 0;
}

}  // namespace quillmarch::service
