// Reads well-formed XML from front to back without a tree: for parts that are large and flat, such
// as a sheet's cells, where a tree would cost many times the part's own size.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/package/xml/Namespaces.h"

namespace quillmarch::host {

class XmlReader {
 public:
  enum class Event {
    kStart,  // a start tag; "<a/>" gives kStart and then kEnd
    kEnd,
    kText,  // a stretch of character data or one CDATA section
    kDone,
  };

  // `xml` is what ReadXmlPart gave, and outlives the reader.
  explicit XmlReader(std::string_view xml) : xml_(xml) {}

  Event Next();

  // Of the element that the last kStart or kEnd belongs to.
  XmlNamespace space() const { return space_; }
  std::string_view local() const { return LocalName(name_); }
  // As it stands in the part, with its prefix.
  std::string_view name() const { return name_; }
  // Whether it is that element.
  bool Is(XmlNamespace space, std::string_view local) const {
    return space_ == space && LocalName(name_) == local;
  }
  // How many elements are open, the one of a kStart included; at its kEnd the same number.
  std::size_t depth() const { return depth_; }
  bool selfClosed() const { return selfClosed_; }

  // Where the markup or text of the last event begins and ends, in the part's bytes. The two
  // events of "<a/>" have the same.
  std::size_t begin() const { return begin_; }
  std::size_t end() const { return end_; }

  // An attribute of the last kStart as the part has it, references unresolved; null data when it
  // is absent. The name includes its prefix.
  std::string_view RawAttribute(std::string_view name) const;
  // The same with references resolved; empty when it is absent.
  std::string Attribute(std::string_view name) const;
  // r:id and the like, whatever the prefix.
  std::string RelationshipAttribute(std::string_view local) const;
  // Appends the text of the last kText, references resolved.
  void AppendText(std::string& to) const;

  // After a kStart: goes on to its kEnd.
  void SkipElement();

 private:
  struct Binding {
    std::string_view prefix;
    XmlNamespace space;
    std::size_t depth;
  };
  struct RawPair {
    std::string_view name;
    std::string_view value;
  };

  bool NextAttribute(std::size_t& at, RawPair& pair) const;
  void Bind();
  XmlNamespace SpaceOf(std::string_view prefix) const;
  Event Start();
  Event End();

  std::string_view xml_;
  std::vector<Binding> bindings_;
  std::string_view name_;
  XmlNamespace space_ = XmlNamespace::kOther;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t depth_ = 0;
  bool selfClosed_ = false;
  bool endDue_ = false;   // the kEnd of "<a/>"
  bool closing_ = false;  // the last event was a kEnd, its element is left with the next
  bool cdata_ = false;
};

}  // namespace quillmarch::host
