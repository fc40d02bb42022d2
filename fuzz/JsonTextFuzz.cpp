// The JSON text readers over any text whatever: no crash, and what holds for every text holds.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "foundation/settings/TargetStyle.h"
#include "foundation/text/JsonText.h"
#include "foundation/text/JsonTextReference.h"

namespace quillmarch::addin {

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Wide json = ToWide({reinterpret_cast<const char*>(data), size});
  for (const WideView key : {u"k", u"targetFont", u"", u"\""}) {
    const Wide quoted = u"\"" + Wide(key) + u"\"";
    Require(JsonHasKey(json, key) == (json.find(quoted) != Wide::npos));
    Require(GivenByReaders(json, key) == GivenPlainly(json, key));
    const Wide value = JsonGetString(json, key);
    Require(value.size() <= json.size());
    Require(JsonFindString(json, key).size() <= json.size());
    Require(!JsonGetBool(json, key) || JsonHasKey(json, key));
    Require(JsonGetFlag(json, key) || JsonHasKey(json, key));
    JsonGetNumber(json, key);
    JsonGetStringArray(json, key);
    const Wide object = JsonGetObject(json, key);
    Require(object.empty() || (object.front() == u'{' && object.back() == u'}'));
    Require(json.find(object) != Wide::npos);
  }
  TargetStyle style;
  ReadTargetStyle(json, style);
  Require(style.bold >= -1 && style.bold <= 1);
  Require(style.color >= -1 && style.color <= 0xFFFFFF);
  // Whatever the text is, it survives the way through a document.
  Require(JsonGetString(u"{\"k\":\"" + JsonEscape(json) + u"\"}", u"k") == json);
  return 0;
}

}  // namespace quillmarch::addin
