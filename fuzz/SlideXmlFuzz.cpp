// Any bytes as a slide's XML: what passes the check of well-formedness is walked, every text and
// font is read, texts and properties are put, and the part that comes of it must be well-formed
// and read back as it was left.
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

#include "host/deck/Deck.h"
#include "host/deck/text/RunPropertiesEdit.h"
#include "host/package/xml/XmlCheck.h"

namespace quillmarch::host {

namespace {

constexpr const char* kSlide = "ppt/slides/slide1.xml";
constexpr const char* kPresentation = "ppt/presentation.xml";

// A package in memory with the least around one slide.
class OneSlide final : public Package {
 public:
  explicit OneSlide(std::string slide) {
    const std::string space =
        "xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\" "
        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"";
    parts_[kPresentation] = "<p:presentation " + space +
                            "><p:sldIdLst><p:sldId id=\"256\" r:id=\"s\"/></p:sldIdLst>"
                            "</p:presentation>";
    parts_[kSlide] = std::move(slide);
  }

  bool HasPart(std::string_view name) const override { return parts_.contains(std::string(name)); }
  std::vector<std::string> PartNames() const override { return {kPresentation, kSlide}; }
  Result<std::string> ReadPart(std::string_view name) override {
    const auto found = parts_.find(std::string(name));
    if (found != parts_.end()) return found->second;
    return Error{ErrorCode::kNotFound, "The part is missing."};
  }
  Result<std::string> ReadXmlPart(std::string_view name) override {
    Result<std::string> result = ReadPart(name);
    if (!result || CheckXml(*result, XmlLimits{}, false).fault == XmlFault::kNone) return result;
    return Error{ErrorCode::kDamaged, "The part is not good XML."};
  }
  std::string ContentType(std::string_view) const override {
    return "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml";
  }
  Result<std::vector<Relationship>> Relationships(std::string_view name) override {
    const std::string root = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    std::vector<Relationship> links;
    if (name.empty()) links = {{"d", root + "officeDocument", kPresentation, false}};
    if (name == kPresentation) links = {{"s", root + "slide", kSlide, false}};
    return links;
  }
  void PutPart(std::string_view name, std::string bytes) override {
    if (CheckXml(bytes, XmlLimits{}, false).fault != XmlFault::kNone) std::abort();
    parts_[std::string(name)] = std::move(bytes);
    edited_ = true;
  }
  void PutPartLater(std::string_view name, std::size_t,
                    std::function<std::string()> make) override {
    PutPart(name, make());
  }
  Result<void> AddPart(std::string_view name, std::string_view, std::string bytes) override {
    PutPart(name, std::move(bytes));
    return {};
  }
  Result<void> RemovePart(std::string_view name) override {
    parts_.erase(std::string(name));
    return {};
  }
  bool Edited() override { return edited_; }
  Result<void> Save(const std::string&) override { return {}; }
  Result<std::string> SaveBytes() override { return std::string(); }

 private:
  std::map<std::string, std::string> parts_;
  bool edited_ = false;
};

template <typename F>
void EachText(deck::Deck& deck, F visit) {
  deck::SlidePart* const page = deck.Page({0, false});
  if (page == nullptr) std::abort();
  for (std::uint32_t shape = 0; shape < page->shapes().Count(); ++shape) {
    deck::ShapeAddress address{{0, false}, shape};
    deck.Box(address);
    if (deck.Text(address) != nullptr) visit(address);
    deck::TableGrid* const grid = page->Table(shape);
    for (std::uint32_t row = 0; grid != nullptr && row < grid->Rows(); ++row) {
      for (std::uint32_t column = 0; column < grid->Columns(); ++column) {
        address.row = static_cast<std::int32_t>(row);
        address.column = static_cast<std::int32_t>(column);
        if (deck.Text(address) != nullptr) visit(address);
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> warnings;
  auto opened = deck::Deck::Open(
      std::make_unique<OneSlide>(std::string(reinterpret_cast<const char*>(data), size)), warnings);
  if (!opened.ok()) return 0;
  deck::Deck& deck = *opened.value();
  std::vector<Wide> left;
  EachText(deck, [&](const deck::ShapeAddress& address) {
    deck::TextBody& text = *deck.Text(address);
    deck.Style(address, text);
    text.VisitProps({0, text.Length()}, [](const deck::CharProps&) { return true; });
    text.Runs({0, text.Length()});
    for (std::size_t i = text.ParagraphCount(); i-- > 0;) {
      deck::TextSpan span = text.Paragraph(i);
      const Wide old = text.Text(span);
      if (old.size() != span.length) std::abort();
      // The bytes of the input decide what is done to the paragraph.
      const unsigned way = data[(i + address.shape) % size] % 5u;
      if (way == 0) text.PutText(span, u"<" + old + u">");
      if (way == 1) {
        deck::TextSpan middle{span.start + span.length / 2, span.length / 3};
        text.PutText(middle, u"a\rb\vc");
      }
      if (way == 2) text.PutText(span, u"");
      if (way == 3) {
        text.EditProps({span.start, span.length / 2},
                       [](std::string_view raw, std::string_view prefix) {
                         return deck::WithSolidFill(
                             deck::WithTypeface(deck::WithRunAttribute(raw, prefix, "sz", "1200"),
                                                prefix, "ea", "F"),
                             prefix, "<" + std::string(prefix) + "srgbClr val=\"010203\"/>");
                       });
      }
    }
  });
  EachText(deck, [&](const deck::ShapeAddress& address) {
    deck::TextBody& text = *deck.Text(address);
    left.push_back(text.Text({0, text.Length()}));
  });
  static_cast<void>(deck.Save(""));
  std::size_t next = 0;
  EachText(deck, [&](const deck::ShapeAddress& address) {
    deck::TextBody& text = *deck.Text(address);
    if (next >= left.size() || text.Text({0, text.Length()}) != left[next]) std::abort();
    ++next;
  });
  return 0;
}

}  // namespace quillmarch::host
