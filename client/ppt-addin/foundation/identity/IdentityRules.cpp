#include "foundation/identity/IdentityRules.h"

#include <cstdio>

#include "foundation/text/JsonText.h"

namespace quillmarch {

namespace {

constexpr WideView kProduct = u"ppt";
constexpr WideView kDefaultVersion = u"0.0.0";

Wide QuotedValue(WideView value) {
  return u'"' + JsonEscape(value) + u'"';
}

Wide ValueOr(WideView json, WideView key, WideView fallback) {
  Wide value = JsonFindString(json, key);
  return value.empty() ? Wide(fallback) : value;
}

WideView Bare(bool flag) {
  return flag ? u"true" : u"false";
}

}  // namespace

Wide DescribeOs(WideView system, WideView machine, bool (*real)(OsVersion&),
                bool (*shown)(OsVersion&)) {
  Wide text(system);
  text += u' ';
  text += machine;
  OsVersion version;
  if (real(version) || shown(version)) {
    text += u' ' + DecimalUnsigned(version.major) + u'.' + DecimalUnsigned(version.minor) + u'.' +
            DecimalUnsigned(version.build);
  }
  return text;
}

Wide NewInstallId(const Guid* guid, std::uint64_t tick) {
  if (guid == nullptr) return u"local-" + DecimalUnsigned(tick);
  char text[40];
  const auto& d = guid->data4;
  std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", guid->data1,
                guid->data2, guid->data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
  return ToWide(text);
}

Wide VersionOf(WideView versionFile) {
  return ValueOr(versionFile, u"version", kDefaultVersion);
}

Wide ContextJson(WideView installId, WideView os, const HostKind& host, WideView version) {
  // A presentation host reads "word" too: the service knows two channels only.
  const bool sheet = host.word == u"excel" || host.word == u"wps-excel";
  Wide json = u"{\"installId\":" + QuotedValue(installId);
  json += u",\"channel\":" + QuotedValue(sheet ? u"excel" : u"word");
  json += u",\"os\":" + QuotedValue(os);
  json += u",\"hostApp\":" + QuotedValue(host.word);
  json += u",\"hostVersion\":" + QuotedValue(host.version);
  json += u",\"clientVersion\":" + QuotedValue(version);
  json += u'}';
  return json;
}

Wide InfoJson(WideView versionFile, WideView os, WideView installId, const HostKind& host) {
  Wide json = u"{\"productId\":";
  json += QuotedValue(ValueOr(versionFile, u"productId", u"quillmarch-office-ai"));
  json += u",\"platform\":" + QuotedValue(ValueOr(versionFile, u"platform", u"windows"));
  json += u",\"version\":" + QuotedValue(VersionOf(versionFile));
  json += u",\"commit\":" + QuotedValue(JsonFindString(versionFile, u"commit"));
  json += u",\"buildDate\":" + QuotedValue(JsonFindString(versionFile, u"buildDate"));
  json += u",\"os\":" + QuotedValue(os);
  json += u",\"installId\":" + QuotedValue(installId);
  json += u",\"hostApp\":" + QuotedValue(host.word);
  json += u",\"hostAppVersion\":" + QuotedValue(host.version);
  json += u",\"hostAppName\":" + QuotedValue(host.name);
  json += u",\"capabilities\":{\"pptBilingualSlides\":";
  json += Bare(kProduct == u"ppt");
  json += u",\"targetFontBold\":";
  json += Bare(kProduct == u"word" || kProduct == u"excel");
  json += u"}}";
  return json;
}

}  // namespace quillmarch
