#include "host/package/xml/XmlCheck.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string_view>
#include <vector>

#include "host/package/xml/XmlChar.h"
#include "host/package/xml/XmlNameChars.h"
#include "host/package/xml/XmlReference.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host {

namespace {

constexpr std::string_view kXmlUri = "http://www.w3.org/XML/1998/namespace";
constexpr std::string_view kXmlnsUri = "http://www.w3.org/2000/xmlns/";
constexpr std::size_t kFewAttributes = 8;  // up to here comparing all pairs is the fastest

enum : unsigned char {
  kPlainText = 1,   // goes on in character data
  kPlainValue = 2,  // goes on in an attribute value
  kNameStart = 4,
  kNameRest = 8,  // NCName characters, without the colon
  kBlank = 16,
};

constexpr std::array<unsigned char, 256> kClass = [] {
  std::array<unsigned char, 256> table{};
  for (std::size_t c = 0; c < 0x80; ++c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    const bool digit = c >= '0' && c <= '9';
    const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    const bool legal = c >= 0x20 || blank;
    unsigned bits = 0;
    if (legal && c != '<' && c != '&' && c != ']') bits |= kPlainText;
    if (legal && c != '<' && c != '&' && c != '"' && c != '\'') bits |= kPlainValue;
    if (letter) bits |= kNameStart;
    if (letter || digit || c == '-' || c == '.') bits |= kNameRest;
    if (blank) bits |= kBlank;
    table[c] = static_cast<unsigned char>(bits);
  }
  return table;
}();

unsigned Class(const char* p) {
  return kClass[static_cast<unsigned char>(*p)];
}

struct QName {
  std::string_view prefix;
  std::string_view local;
  std::string_view whole;
};

struct Attribute {
  QName name;
  std::string_view value;  // raw, between the quotes
  std::string_view uri;    // set for a prefixed one
};

struct Binding {
  std::string_view prefix;
  std::string_view uri;  // empty: the default namespace is taken back
};

struct OpenElement {
  std::string_view name;
  std::size_t bindings;  // how many were in force before it
};

// Walks the bytes once. Relies on the NUL that stands behind a std::string's last byte: no loop
// over a class of characters runs past it.
class Checker {
 public:
  Checker(const std::string& bytes, const XmlLimits& limits, bool declaredUtf16)
      : begin_(bytes.data()),
        p_(begin_),
        end_(begin_ + bytes.size()),
        limits_(limits),
        declaredUtf16_(declaredUtf16) {
    bindings_.push_back({"xml", kXmlUri});
  }

  XmlVerdict Run() {
    Document();
    return {fault_, static_cast<std::size_t>(at_ - begin_)};
  }

 private:
  bool Fail(XmlFault fault, const char* at) {
    fault_ = fault;
    at_ = at;
    return false;
  }
  // Something other than `wanted` stands here: the end, or `fault`.
  bool FailHere(XmlFault fault) {
    if (p_ >= end_) return Fail(XmlFault::kUnclosed, end_);
    if (*p_ == '\0' || (static_cast<unsigned char>(*p_) < 0x20 && !(Class(p_) & kBlank))) {
      return Fail(XmlFault::kIllegalCharacter, p_);
    }
    return Fail(fault, p_);
  }
  bool Starts(std::string_view text) const {
    return static_cast<std::size_t>(end_ - p_) >= text.size() &&
           std::memcmp(p_, text.data(), text.size()) == 0;
  }
  void SkipBlanks() {
    while (Class(p_) & kBlank) ++p_;
  }
  bool CountNode() {
    if (++nodes_ <= limits_.maxNodes) return true;
    return Fail(XmlFault::kTooManyNodes, p_);
  }

  // Steps over one character outside of ASCII.
  bool WideChar() {
    const Utf8Char decoded = DecodeUtf8(std::string_view(p_, static_cast<std::size_t>(end_ - p_)));
    if (decoded.length == 0) return Fail(XmlFault::kNotUtf8, p_);
    if (!IsXmlChar(decoded.code)) return Fail(XmlFault::kIllegalCharacter, p_);
    p_ += decoded.length;
    return true;
  }

  bool Document();
  bool Declaration();
  bool DeclarationItem(std::string_view name, std::string_view& value);
  bool Misc();
  bool Content();
  bool Text();
  bool Reference();
  bool Comment();
  bool Section();
  bool Instruction();
  bool Until(std::string_view closing);
  bool Name(std::string_view& name);
  bool QualifiedName(QName& name);
  bool StartTag();
  bool AttributeHere();
  bool Value(std::string_view& value);
  bool EndTag();
  bool Declare(const Attribute& attribute);
  const std::string_view* Bound(std::string_view prefix) const;
  bool Namespaces(const QName& element, const char* at);
  bool Duplicates(const char* at);

  const char* begin_;
  const char* p_;
  const char* end_;
  XmlLimits limits_;
  bool declaredUtf16_;
  XmlFault fault_ = XmlFault::kNone;
  const char* at_ = begin_;
  std::size_t nodes_ = 0;
  std::vector<OpenElement> open_;
  std::vector<Binding> bindings_;
  std::vector<Attribute> attributes_;
  std::deque<std::string> owned_;  // namespace names that had to be unescaped
};

bool Checker::Document() {
  if (Starts("\xEF\xBB\xBF")) p_ += 3;
  if (Starts("<?xml") && (Class(p_ + 5) & kBlank) && !Declaration()) return false;
  if (!Misc()) return false;
  if (p_ >= end_) return Fail(XmlFault::kEmpty, end_);
  if (*p_ != '<') return FailHere(XmlFault::kOutside);
  ++p_;
  if (!StartTag() || !Content() || !Misc()) return false;
  return p_ >= end_ || FailHere(XmlFault::kOutside);
}

// One `name="value"` of the XML declaration, with the blanks in front of it.
bool Checker::DeclarationItem(std::string_view name, std::string_view& value) {
  const char* const start = p_;
  SkipBlanks();
  if (p_ == start || !Starts(name)) {
    p_ = start;
    return false;
  }
  p_ += name.size();
  SkipBlanks();
  if (*p_ != '=') return Fail(XmlFault::kDeclaration, p_);
  ++p_;
  SkipBlanks();
  const char quote = *p_;
  if (quote != '"' && quote != '\'') return Fail(XmlFault::kDeclaration, p_);
  const char* const first = ++p_;
  while (p_ < end_ && *p_ != quote) ++p_;
  if (p_ >= end_) return Fail(XmlFault::kDeclaration, start);
  value = {first, static_cast<std::size_t>(p_ - first)};
  ++p_;
  return true;
}

bool Checker::Declaration() {
  const char* const start = p_;
  p_ += 5;
  std::string_view value;
  if (!DeclarationItem("version", value)) return Fail(XmlFault::kDeclaration, start);
  const bool known = value.size() > 2 && value.starts_with("1.") &&
                     value.find_first_not_of("0123456789", 2) == std::string_view::npos;
  if (!known) return Fail(XmlFault::kDeclaration, start);
  if (DeclarationItem("encoding", value)) {
    std::string encoding(value);
    for (char& c : encoding) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    if (encoding != (declaredUtf16_ ? "UTF-16" : "UTF-8")) {
      return Fail(XmlFault::kEncoding, start);
    }
  }
  if (fault_ != XmlFault::kNone) return false;
  if (DeclarationItem("standalone", value) && value != "yes" && value != "no") {
    return Fail(XmlFault::kDeclaration, start);
  }
  if (fault_ != XmlFault::kNone) return false;
  SkipBlanks();
  if (!Starts("?>")) return Fail(XmlFault::kDeclaration, start);
  p_ += 2;
  return true;
}

// Blanks, comments and instructions outside of the root.
bool Checker::Misc() {
  while (true) {
    SkipBlanks();
    if (Starts("<?")) {
      if (!Instruction()) return false;
    } else if (Starts("<!--")) {
      if (!Comment()) return false;
    } else if (Starts("<!DOCTYPE")) {
      return Fail(XmlFault::kDoctype, p_);
    } else if (Starts("<!") || Starts("</")) {
      return Fail(XmlFault::kMarkup, p_);
    } else {
      return true;
    }
  }
}

bool Checker::Content() {
  while (!open_.empty()) {
    if (*p_ != '<') {
      if (p_ >= end_) return Fail(XmlFault::kUnclosed, end_);
      if (!Text()) return false;
      continue;
    }
    ++p_;
    if (Class(p_) & kNameStart) {
      if (!StartTag()) return false;
    } else if (*p_ == '/') {
      if (!EndTag()) return false;
    } else if (*p_ == '!') {
      --p_;
      if (Starts("<!--")) {
        if (!Comment()) return false;
      } else if (Starts("<![CDATA[")) {
        if (!Section()) return false;
      } else {
        return Fail(Starts("<!DOCTYPE") ? XmlFault::kDoctype : XmlFault::kMarkup, p_);
      }
    } else if (*p_ == '?') {
      --p_;
      if (!Instruction()) return false;
    } else if (!StartTag()) {
      return false;
    }
  }
  return true;
}

bool Checker::Text() {
  if (!CountNode()) return false;
  while (true) {
    while (Class(p_) & kPlainText) ++p_;
    const char c = *p_;
    if (c == '<') return true;
    if (c == '&') {
      if (!Reference()) return false;
    } else if (c == ']') {
      if (Starts("]]>")) return Fail(XmlFault::kMarkup, p_);
      ++p_;
    } else if (static_cast<unsigned char>(c) >= 0x80) {
      if (!WideChar()) return false;
    } else {
      return FailHere(XmlFault::kIllegalCharacter);
    }
  }
}

bool Checker::Reference() {
  const auto* const end =
      static_cast<const char*>(std::memchr(p_, ';', static_cast<std::size_t>(end_ - p_)));
  if (end == nullptr || ResolveReference({p_ + 1, end}) == 0) return Fail(XmlFault::kEntity, p_);
  p_ = end + 1;
  return true;
}

// Legal characters up to `closing`, which is stepped over.
bool Checker::Until(std::string_view closing) {
  while (true) {
    if (*p_ == closing[0] && Starts(closing)) {
      p_ += closing.size();
      return true;
    }
    if (static_cast<unsigned char>(*p_) >= 0x80) {
      if (!WideChar()) return false;
    } else if (static_cast<unsigned char>(*p_) < 0x20 && !(Class(p_) & kBlank)) {
      return FailHere(XmlFault::kIllegalCharacter);
    } else {
      ++p_;
    }
  }
}

bool Checker::Comment() {
  p_ += 4;
  if (!Until("--")) return false;
  if (*p_ != '>') return FailHere(XmlFault::kMarkup);
  ++p_;
  return true;
}

bool Checker::Section() {
  p_ += 9;
  return CountNode() && Until("]]>");
}

bool Checker::Instruction() {
  const char* const start = p_;
  p_ += 2;
  std::string_view target;
  if (!Name(target)) return false;
  if (target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' &&
      (target[2] | 0x20) == 'l') {
    return Fail(XmlFault::kDeclaration, start);
  }
  if (Starts("?>")) {
    p_ += 2;
    return true;
  }
  if (!(Class(p_) & kBlank)) return FailHere(XmlFault::kMarkup);
  return Until("?>");
}

bool Checker::Name(std::string_view& name) {
  const char* const first = p_;
  if (Class(p_) & kNameStart) {
    ++p_;
  } else {
    const Utf8Char wide = DecodeUtf8({p_, static_cast<std::size_t>(end_ - p_)});
    if (wide.length < 2 || !IsNameStartChar(wide.code)) {
      if (p_ < end_ && wide.length == 0) return Fail(XmlFault::kNotUtf8, p_);
      return FailHere(XmlFault::kMarkup);
    }
    p_ += wide.length;
  }
  while (true) {
    while (Class(p_) & kNameRest) ++p_;
    if (static_cast<unsigned char>(*p_) < 0x80) break;
    const Utf8Char wide = DecodeUtf8({p_, static_cast<std::size_t>(end_ - p_)});
    if (wide.length == 0) return Fail(XmlFault::kNotUtf8, p_);
    if (!IsNameChar(wide.code)) return Fail(XmlFault::kMarkup, p_);
    p_ += wide.length;
  }
  name = {first, static_cast<std::size_t>(p_ - first)};
  return true;
}

bool Checker::QualifiedName(QName& name) {
  const char* const first = p_;
  name.prefix = {};
  if (!Name(name.local)) return false;
  if (*p_ == ':') {
    ++p_;
    name.prefix = name.local;
    if (!Name(name.local)) return false;
  }
  name.whole = {first, static_cast<std::size_t>(p_ - first)};
  return true;
}

bool Checker::Value(std::string_view& value) {
  const char quote = *p_;
  if (quote != '"' && quote != '\'') return FailHere(XmlFault::kAttribute);
  const char* const first = ++p_;
  while (true) {
    while (Class(p_) & kPlainValue) ++p_;
    const char c = *p_;
    if (c == quote) break;
    if (c == '"' || c == '\'') {
      ++p_;
    } else if (c == '&') {
      if (!Reference()) return false;
    } else if (static_cast<unsigned char>(c) >= 0x80) {
      if (!WideChar()) return false;
    } else {
      return FailHere(XmlFault::kAttribute);
    }
  }
  value = {first, static_cast<std::size_t>(p_ - first)};
  ++p_;
  return true;
}

bool Checker::AttributeHere() {
  Attribute attribute;
  if (!CountNode() || !QualifiedName(attribute.name)) return false;
  SkipBlanks();
  if (*p_ != '=') return FailHere(XmlFault::kAttribute);
  ++p_;
  SkipBlanks();
  if (!Value(attribute.value)) return false;
  const bool declares = attribute.name.prefix == "xmlns" || attribute.name.whole == "xmlns";
  if (declares && !Declare(attribute)) return false;
  attributes_.push_back(attribute);
  return true;
}

bool Checker::StartTag() {
  const char* const start = p_ - 1;
  const std::size_t bindings = bindings_.size();
  QName name;
  if (!CountNode() || !QualifiedName(name)) return false;
  attributes_.clear();
  bool closed = false;
  while (true) {
    const char* const before = p_;
    SkipBlanks();
    if (*p_ == '>') break;
    if (*p_ == '/') {
      ++p_;
      if (*p_ != '>') return FailHere(XmlFault::kMarkup);
      closed = true;
      break;
    }
    if (p_ == before) return FailHere(XmlFault::kMarkup);
    if (!AttributeHere()) return false;
  }
  ++p_;
  if (!Namespaces(name, start)) return false;
  if (open_.size() >= limits_.maxDepth) return Fail(XmlFault::kTooDeep, start);
  if (closed) {
    bindings_.resize(bindings);
    return true;
  }
  open_.push_back({name.whole, bindings});
  return true;
}

bool Checker::EndTag() {
  const char* const start = p_ - 1;
  ++p_;
  const std::string_view name = open_.back().name;
  if (!Starts(name)) return Fail(XmlFault::kEndTag, start);
  p_ += name.size();
  SkipBlanks();
  if (p_ >= end_) return Fail(XmlFault::kUnclosed, end_);
  if (*p_ != '>') return Fail(XmlFault::kEndTag, start);
  ++p_;
  bindings_.resize(open_.back().bindings);
  open_.pop_back();
  return true;
}

bool Checker::Declare(const Attribute& attribute) {
  const bool isDefault = attribute.name.prefix.empty();
  const std::string_view prefix = isDefault ? std::string_view() : attribute.name.local;
  const char* const at = attribute.name.whole.data();
  std::string_view uri = attribute.value;
  if (uri.find_first_of("&\t\n\r") != std::string_view::npos) {
    owned_.push_back(Unescape(uri));
    for (char& c : owned_.back()) {
      if (c == '\t' || c == '\n') c = ' ';
    }
    uri = owned_.back();
  }
  if (prefix == "xmlns" || uri == kXmlnsUri) return Fail(XmlFault::kPrefix, at);
  if ((prefix == "xml") != (uri == kXmlUri)) return Fail(XmlFault::kPrefix, at);
  if (!isDefault && uri.empty()) return Fail(XmlFault::kPrefix, at);
  if (bindings_.size() > limits_.maxNamespaces) return Fail(XmlFault::kTooManyNamespaces, at);
  bindings_.push_back({prefix, uri});
  return true;
}

const std::string_view* Checker::Bound(std::string_view prefix) const {
  for (std::size_t i = bindings_.size(); i-- > 0;) {
    if (bindings_[i].prefix == prefix) return &bindings_[i].uri;
  }
  return nullptr;
}

bool Checker::Namespaces(const QName& element, const char* at) {
  if (!element.prefix.empty() && Bound(element.prefix) == nullptr) {
    return Fail(XmlFault::kPrefix, at);
  }
  if (attributes_.empty()) return true;
  for (Attribute& attribute : attributes_) {
    if (attribute.name.prefix.empty()) continue;
    if (attribute.name.prefix == "xmlns") {
      attribute.uri = kXmlnsUri;
      continue;
    }
    const std::string_view* const uri = Bound(attribute.name.prefix);
    if (uri == nullptr) return Fail(XmlFault::kPrefix, attribute.name.whole.data());
    attribute.uri = *uri;
  }
  return Duplicates(at);
}

bool Checker::Duplicates(const char* at) {
  const auto same = [](const Attribute& left, const Attribute& right) {
    return left.name.local == right.name.local && left.uri == right.uri;
  };
  if (attributes_.size() <= kFewAttributes) {
    for (std::size_t i = 1; i < attributes_.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        if (same(attributes_[i], attributes_[j])) {
          return Fail(XmlFault::kDuplicate, attributes_[i].name.whole.data());
        }
      }
    }
    return true;
  }
  std::sort(attributes_.begin(), attributes_.end(), [](const Attribute& l, const Attribute& r) {
    return l.name.local != r.name.local ? l.name.local < r.name.local : l.uri < r.uri;
  });
  const auto twin = std::adjacent_find(attributes_.begin(), attributes_.end(), same);
  return twin == attributes_.end() || Fail(XmlFault::kDuplicate, at);
}

std::string_view FaultWords(XmlFault fault) {
  switch (fault) {
    case XmlFault::kNone:
      return "nothing is wrong";
    case XmlFault::kEmpty:
      return "it has no root element";
    case XmlFault::kNotUtf8:
      return "there are bytes that are not UTF-8";
    case XmlFault::kIllegalCharacter:
      return "there is a character that XML does not allow";
    case XmlFault::kDoctype:
      return "it has a document type (DOCTYPE), which is not allowed";
    case XmlFault::kEncoding:
      return "it declares an encoding other than its own UTF-8 or UTF-16";
    case XmlFault::kDeclaration:
      return "the XML declaration is broken or misplaced";
    case XmlFault::kMarkup:
      return "there is a broken tag";
    case XmlFault::kAttribute:
      return "there is a broken attribute";
    case XmlFault::kDuplicate:
      return "an element has the same attribute twice";
    case XmlFault::kPrefix:
      return "a namespace prefix is not declared or is misused";
    case XmlFault::kEntity:
      return "there is an unknown entity or a broken reference";
    case XmlFault::kEndTag:
      return "an end tag does not match its start tag";
    case XmlFault::kUnclosed:
      return "it ends in the middle";
    case XmlFault::kOutside:
      return "there is something outside of the root element";
    case XmlFault::kTooDeep:
      return "its elements are nested too deeply";
    case XmlFault::kTooManyNodes:
      return "it has too many elements";
    case XmlFault::kTooManyNamespaces:
      return "it declares too many namespaces";
  }
  return "";
}

}  // namespace

XmlVerdict CheckXml(const std::string& bytes, const XmlLimits& limits, bool declaredUtf16) {
  return Checker(bytes, limits, declaredUtf16).Run();
}

std::string DescribeXmlFault(const XmlVerdict& verdict) {
  return std::string(FaultWords(verdict.fault)) + " (at byte " + std::to_string(verdict.offset) +
         ")";
}

}  // namespace quillmarch::host
