#include "foundation/text/JsonTextReference.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "foundation/text/CharClass.h"
#include "foundation/text/JsonText.h"

namespace quillmarch::addin {

namespace {

Wide NumberText(double number) {
  if (std::isnan(number)) return u"nan";  // of either sign
  char text[40];
  std::snprintf(text, sizeof(text), "%.17g", number + 0.0);
  return ToWide(text);
}

template <typename Json>
Wide Together(const Json& json) {
  Wide all = u"string " + json.String() + u"\nplain string " + json.PlainString();
  all += json.Bool() ? u"\ntrue" : u"\nfalse";
  all += json.Flag() ? u" true " : u" false ";
  all += NumberText(json.Number());
  for (const Wide& value : json.Strings()) all += u"\nitem " + value;
  all += u"\nobject " + json.Object();
  return all + (json.HasKey() ? u"\npresent" : u"\nabsent");
}

class Reference {
 public:
  Reference(WideView json, WideView key) : json_(json), quoted_(u'"' + Wide(key) + u'"') {}

  Wide String() const {
    for (std::size_t at = 0; at < json_.size(); ++at) {
      if (!KeyAt(at)) continue;
      std::size_t behind = at + quoted_.size();
      while (At(behind) == u' ' || At(behind) == u'\t') ++behind;
      if (At(behind) == u':') return StringBehind(behind + 1);
    }
    return {};
  }
  Wide PlainString() const { return HasKey() ? StringBehind(FirstKey() + quoted_.size()) : Wide(); }
  bool Bool() const {
    if (!HasKey()) return false;
    const std::size_t at = BehindBlanksAndColons();
    if (At(at) == u'1') return true;
    return At(at) == u't' && At(at + 1) == u'r' && At(at + 2) == u'u' && At(at + 3) == u'e';
  }
  bool Flag() const {
    if (!HasKey()) return true;
    std::size_t at = FirstKey() + quoted_.size();
    while (at < json_.size() && json_[at] != u':') ++at;
    if (at == json_.size()) return true;
    ++at;
    while (At(at) == u' ' || At(at) == u'\t') ++at;
    static constexpr char16_t kFalse[] = u"false";
    for (std::size_t i = 0; i < 5; ++i) {
      if (At(at + i) != kFalse[i]) return true;
    }
    return false;
  }
  double Number() const {
    if (!HasKey()) return 0.0;
    std::string text;
    std::size_t at = BehindBlanksAndColons();
    while (at < json_.size() && IsSpace(json_[at])) ++at;
    for (; at < json_.size() && json_[at] < 0x7F; ++at) {
      text.push_back(static_cast<char>(json_[at]));
    }
    return std::strtod(text.c_str(), nullptr);  // no program of the tests sets a locale
  }
  std::vector<Wide> Strings() const {
    std::vector<Wide> values;
    if (!HasKey()) return values;
    std::size_t at = FirstKey();
    while (at < json_.size() && json_[at] != u'[') ++at;
    while (at < json_.size()) {
      while (at < json_.size() && json_[at] != u'"') ++at;
      if (at == json_.size()) break;
      ++at;
      values.push_back(Value(at));
      ++at;
      while (at < json_.size() && json_[at] != u'"' && json_[at] != u',' && json_[at] != u']') {
        ++at;
      }
      if (At(at) == u']') break;
    }
    return values;
  }
  Wide Object() const {
    if (!HasKey()) return {};
    std::size_t from = FirstKey();
    while (from < json_.size() && json_[from] != u'{') ++from;
    int depth = 0;
    bool inString = false;
    for (std::size_t at = from; at < json_.size(); ++at) {
      const char16_t unit = json_[at];
      if (inString && unit == u'\\') {
        ++at;
      } else if (unit == u'"') {
        inString = !inString;
      } else if (!inString && unit == u'{') {
        ++depth;
      } else if (!inString && unit == u'}' && --depth == 0) {
        return Wide(json_.substr(from, at + 1 - from));
      }
    }
    return {};
  }
  bool HasKey() const { return FirstKey() < json_.size(); }

 private:
  // 0, which no text here holds, behind the end.
  char16_t At(std::size_t at) const { return at < json_.size() ? json_[at] : u'\0'; }
  bool KeyAt(std::size_t at) const {
    for (std::size_t i = 0; i < quoted_.size(); ++i) {
      if (at + i >= json_.size() || json_[at + i] != quoted_[i]) return false;
    }
    return true;
  }
  std::size_t FirstKey() const {
    std::size_t at = 0;
    while (at < json_.size() && !KeyAt(at)) ++at;
    return at;
  }
  std::size_t BehindBlanksAndColons() const {
    std::size_t at = FirstKey() + quoted_.size();
    while (At(at) == u' ' || At(at) == u':') ++at;
    return at;
  }
  Wide StringBehind(std::size_t at) const {
    while (at < json_.size() && json_[at] != u'"') ++at;
    if (at == json_.size()) return {};
    return Value(++at);
  }
  // `at` stands behind the opening quote, and at the closing one afterwards.
  Wide Value(std::size_t& at) const {
    Wide value;
    while (at < json_.size() && json_[at] != u'"') {
      const std::size_t left = json_.size() - at - 1;  // units behind this one
      if (json_[at] != u'\\' || left == 0) {
        value += json_[at++];
        continue;
      }
      const char16_t escaped = json_[at + 1];
      if (escaped == u'u' && left - 1 > 4) {
        std::string digits;
        for (std::size_t i = at + 2; i < at + 6 && json_[i] < 0x7F; ++i) {
          if (std::isxdigit(static_cast<int>(json_[i])) == 0) break;
          digits.push_back(static_cast<char>(json_[i]));
        }
        value += static_cast<char16_t>(std::strtoul(digits.c_str(), nullptr, 16));
        at += 6;
        continue;
      }
      value += escaped == u'n'   ? u'\n'
               : escaped == u'r' ? u'\r'
               : escaped == u't' ? u'\t'
                                 : escaped;
      at += 2;
    }
    return value;
  }

  WideView json_;
  Wide quoted_;
};

struct Readers {
  WideView json;
  WideView key;
  Wide String() const { return JsonGetString(json, key); }
  Wide PlainString() const { return JsonFindString(json, key); }
  bool Bool() const { return JsonGetBool(json, key); }
  bool Flag() const { return JsonGetFlag(json, key); }
  double Number() const { return JsonGetNumber(json, key); }
  std::vector<Wide> Strings() const { return JsonGetStringArray(json, key); }
  Wide Object() const { return JsonGetObject(json, key); }
  bool HasKey() const { return JsonHasKey(json, key); }
};

}  // namespace

Wide GivenPlainly(WideView json, WideView key) {
  return Together(Reference(json, key));
}

Wide GivenByReaders(WideView json, WideView key) {
  return Together(Readers{json, key});
}

}  // namespace quillmarch::addin
