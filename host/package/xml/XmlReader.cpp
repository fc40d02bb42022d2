#include "host/package/xml/XmlReader.h"

#include <algorithm>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host {

namespace {

constexpr std::string_view kDeclaration = "xmlns";
constexpr std::string_view kCdataOpen = "<![CDATA[";
constexpr std::string_view kCdataClose = "]]>";

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool EndsName(char c) {
  return IsSpace(c) || c == '>' || c == '/' || c == '=';
}

}  // namespace

// `at` is an offset inside the start tag; false at the tag's end.
bool XmlReader::NextAttribute(std::size_t& at, RawPair& pair) const {
  const std::size_t last = end_ - (selfClosed_ ? 2 : 1);
  while (at < last && IsSpace(xml_[at])) ++at;
  const std::size_t nameBegin = at;
  while (at < last && !EndsName(xml_[at])) ++at;
  pair.name = xml_.substr(nameBegin, at - nameBegin);
  while (at < last && xml_[at] != '"' && xml_[at] != '\'') ++at;
  if (at >= last || pair.name.empty()) return false;
  const std::size_t close = xml_.find(xml_[at], at + 1);
  if (close == std::string_view::npos || close >= last) return false;
  pair.value = xml_.substr(at + 1, close - at - 1);
  at = close + 1;
  return true;
}

void XmlReader::Bind() {
  if (xml_.substr(begin_, end_ - begin_).find(kDeclaration) == std::string_view::npos) return;
  std::size_t at = begin_ + 1 + name_.size();
  for (RawPair pair; NextAttribute(at, pair);) {
    if (!pair.name.starts_with(kDeclaration)) continue;
    std::string_view prefix = pair.name.substr(kDeclaration.size());
    if (!prefix.empty()) {
      if (prefix.front() != ':') continue;
      prefix.remove_prefix(1);
    }
    bindings_.push_back({prefix, NamespaceOf(Unescape(pair.value)), depth_});
  }
}

XmlNamespace XmlReader::SpaceOf(std::string_view prefix) const {
  const auto found = std::find_if(bindings_.rbegin(), bindings_.rend(),
                                  [&](const Binding& each) { return each.prefix == prefix; });
  return found == bindings_.rend() ? XmlNamespace::kOther : found->space;
}

XmlReader::Event XmlReader::Start() {
  std::size_t at = begin_ + 1;
  while (at < xml_.size() && !EndsName(xml_[at])) ++at;
  name_ = xml_.substr(begin_ + 1, at - begin_ - 1);
  for (; at < xml_.size() && xml_[at] != '>'; ++at) {
    if (xml_[at] != '"' && xml_[at] != '\'') continue;
    at = xml_.find(xml_[at], at + 1);
    if (at == std::string_view::npos) break;
  }
  end_ = std::min(at, xml_.size() - 1) + 1;
  selfClosed_ = end_ >= 2 && xml_[end_ - 2] == '/';
  ++depth_;
  Bind();
  space_ = SpaceOf(PrefixOf(name_));
  endDue_ = selfClosed_;
  return Event::kStart;
}

XmlReader::Event XmlReader::End() {
  std::size_t at = begin_ + 2;
  while (at < xml_.size() && !EndsName(xml_[at])) ++at;
  name_ = xml_.substr(begin_ + 2, at - begin_ - 2);
  end_ = std::min(xml_.find('>', at), xml_.size() - 1) + 1;
  space_ = SpaceOf(PrefixOf(name_));
  selfClosed_ = false;
  closing_ = true;
  return Event::kEnd;
}

XmlReader::Event XmlReader::Next() {
  if (closing_) {
    while (!bindings_.empty() && bindings_.back().depth >= depth_) bindings_.pop_back();
    if (depth_ > 0) --depth_;
    closing_ = false;
  }
  if (endDue_) {
    endDue_ = false;
    closing_ = true;
    return Event::kEnd;
  }
  while (end_ < xml_.size()) {
    begin_ = end_;
    const std::string_view rest = xml_.substr(begin_);
    cdata_ = rest.starts_with(kCdataOpen);
    if (cdata_) {
      end_ = std::min(xml_.find(kCdataClose, begin_), xml_.size() - kCdataClose.size()) +
             kCdataClose.size();
      return Event::kText;
    }
    if (rest.front() != '<') {
      end_ = std::min(xml_.find('<', begin_), xml_.size());
      if (depth_ == 0) continue;
      return Event::kText;
    }
    if (rest.starts_with("<!--")) {
      end_ = std::min(xml_.find("-->", begin_ + 4), xml_.size() - 3) + 3;
    } else if (rest.starts_with("<?") || rest.starts_with("<!")) {
      end_ = std::min(xml_.find('>', begin_), xml_.size() - 1) + 1;
      // An instruction may hold ">" inside.
      if (rest[1] == '?') end_ = std::min(xml_.find("?>", begin_), xml_.size() - 2) + 2;
    } else {
      return rest.starts_with("</") ? End() : Start();
    }
  }
  begin_ = end_ = xml_.size();
  return Event::kDone;
}

std::string_view XmlReader::RawAttribute(std::string_view name) const {
  std::size_t at = begin_ + 1 + name_.size();
  for (RawPair pair; NextAttribute(at, pair);) {
    if (pair.name == name) return pair.value;
  }
  return {};
}

std::string XmlReader::Attribute(std::string_view name) const {
  return Unescape(RawAttribute(name));
}

std::string XmlReader::RelationshipAttribute(std::string_view local) const {
  std::size_t at = begin_ + 1 + name_.size();
  for (RawPair pair; NextAttribute(at, pair);) {
    const std::string_view prefix = PrefixOf(pair.name);
    if (!prefix.empty() && LocalName(pair.name) == local &&
        SpaceOf(prefix) == XmlNamespace::kRelationships) {
      return Unescape(pair.value);
    }
  }
  return {};
}

void XmlReader::AppendText(std::string& to) const {
  const std::string_view raw = xml_.substr(begin_, end_ - begin_);
  if (!cdata_) {
    to += Unescape(raw);
    return;
  }
  const std::string_view inside =
      raw.substr(kCdataOpen.size(), raw.size() - kCdataOpen.size() - kCdataClose.size());
  for (std::size_t i = 0; i < inside.size(); ++i) {
    if (inside[i] != '\r') {
      to += inside[i];
    } else if (i + 1 == inside.size() || inside[i + 1] != '\n') {
      to += '\n';
    }
  }
}

void XmlReader::SkipElement() {
  const std::size_t inside = depth_;
  for (Event event = Next(); event != Event::kDone; event = Next()) {
    if (event == Event::kEnd && depth_ == inside) return;
  }
}

}  // namespace quillmarch::host
