#include <algorithm>

#include "foundation/automation/HostMembers.h"
#include "support/FakeClasses.h"

namespace quillmarch::addin::test {

namespace {

constexpr std::int32_t kTrue = -1;
constexpr std::int32_t kMixedValue = -2;

// A stretch of a text; the range that a put went over covers the new text afterwards.
struct RangeNode : FakeNode {
  std::shared_ptr<FakeText> text;
  std::size_t start = 0;
  std::size_t length = 0;
  std::int32_t units = 1;  // how many paragraphs or characters made it

  Wide Text() const { return text->text.substr(start, length); }
  // The fonts of the stretch; of an empty one the font at its place.
  std::vector<FakeFont*> Fonts() const {
    std::vector<FakeFont*> fonts;
    const std::size_t end = std::min(start + length, text->fonts.size());
    for (std::size_t at = start; at < end; ++at) fonts.push_back(&text->fonts[at]);
    return fonts;
  }
};

using Range = std::shared_ptr<RangeNode>;

const FakeClass& RangeClass();
const FakeClass& TextFrameClass();

ObjectRef RangeObjectOf(FakeHost& host, const std::shared_ptr<FakeText>& text, std::size_t start,
                        std::size_t length, std::size_t units) {
  auto node = std::make_shared<RangeNode>();
  node->text = text;
  node->start = start;
  node->length = length;
  node->units = static_cast<std::int32_t>(units);
  node->failing = text->failing;
  return FakeObject::Make(host, RangeClass(), node);
}

ResultCode GetParagraphs(FakeHost& host, const Range& range, const FakeArgs& args, Variant& out) {
  const auto all = ParagraphsOf(range->Text());
  std::size_t first = 0;
  std::size_t count = all.size();
  if (WholeArg(args, 0) > 0) {
    // Beyond the end the host gives the last one.
    first =
        std::min(static_cast<std::size_t>(WholeArg(args, 0)) - 1, all.empty() ? 0 : all.size() - 1);
    const auto wanted = static_cast<std::size_t>(std::max(WholeArg(args, 1), 1));
    count = std::min(wanted, all.size() - std::min(first, all.size()));
  }
  std::size_t length = 0;
  for (std::size_t i = first; i < first + count; ++i) length += all[i].second;
  const std::size_t start = range->start + (count == 0 ? 0 : all[first].first);
  out = Variant::Object(RangeObjectOf(host, range->text, start, length, count));
  return kOk;
}

ResultCode GetCharacters(FakeHost& host, const Range& range, const FakeArgs& args, Variant& out) {
  const auto first = static_cast<std::size_t>(std::max(WholeArg(args, 0), 1)) - 1;
  const auto wanted = static_cast<std::size_t>(std::max(WholeArg(args, 1), 0));
  const std::size_t start = std::min(first, range->length);
  const std::size_t length = std::min(wanted, range->length - start);
  out = Variant::Object(RangeObjectOf(host, range->text, range->start + start, length, length));
  return kOk;
}

ResultCode PutText(const Range& range, const Variant& value) {
  if (range->text->refusesPut || value.type() != VariantType::kText) return kHostException;
  range->text->Replace(range->start, range->length, value.text());
  range->length = value.text().size();
  return kOk;
}

template <typename Field>
bool Uniform(const RangeNode& range, Field FakeFont::*field, Field& value) {
  const auto fonts = range.Fonts();
  if (fonts.empty()) return false;
  value = fonts.front()->*field;
  return std::all_of(fonts.begin(), fonts.end(),
                     [&](const FakeFont* font) { return font->*field == value; });
}

bool UniformColor(const RangeNode& range) {
  const auto fonts = range.Fonts();
  return std::all_of(fonts.begin(), fonts.end(), [&](const FakeFont* font) {
    return font->colorType == fonts.front()->colorType && font->rgb == fonts.front()->rgb &&
           font->scheme == fonts.front()->scheme && font->tint == fonts.front()->tint;
  });
}

FakeMember WholeMember(const char16_t* name, DispId id, std::int32_t FakeFont::*field) {
  FakeMember member{
      name, id,
      [field](FakeHost&, const std::shared_ptr<FakeNode>& node, const FakeArgs&, Variant& out) {
        std::int32_t value = 0;
        const auto range = std::static_pointer_cast<RangeNode>(node);
        out = Variant::I4(Uniform(*range, field, value) ? value : kMixedValue);
        return kOk;
      },
      [field](const std::shared_ptr<FakeNode>& node, const Variant& value) {
        for (FakeFont* font : std::static_pointer_cast<RangeNode>(node)->Fonts()) {
          font->*field = value.whole();
        }
        return kOk;
      }};
  return member;
}

FakeMember NameMember(const char16_t* name, DispId id, Wide FakeFont::*field) {
  return {name, id,
          [field](FakeHost&, const std::shared_ptr<FakeNode>& node, const FakeArgs&, Variant& out) {
            Wide value;
            const auto range = std::static_pointer_cast<RangeNode>(node);
            out = Variant::Text(Uniform(*range, field, value) ? value : Wide());
            return kOk;
          },
          [field](const std::shared_ptr<FakeNode>& node, const Variant& value) {
            for (FakeFont* font : std::static_pointer_cast<RangeNode>(node)->Fonts()) {
              font->*field = value.text();
            }
            return kOk;
          }};
}

ResultCode GetSize(FakeHost&, const Range& range, const FakeArgs&, Variant& out) {
  float size = 0.0F;
  out = Variant::R4(Uniform(*range, &FakeFont::size, size) ? size : -2.0F);
  return kOk;
}

ResultCode PutSize(const Range& range, const Variant& value) {
  for (FakeFont* font : range->Fonts()) font->size = value.single();
  return kOk;
}

// Over a mixed range the type is -2 and the colours themselves fail.
template <std::int32_t FakeFont::*Field>
ResultCode GetColorWhole(FakeHost&, const Range& range, const FakeArgs&, Variant& out) {
  if (range->Fonts().empty() || !UniformColor(*range)) return kHostException;
  out = Variant::I4(range->Fonts().front()->*Field);
  return kOk;
}

ResultCode GetColorType(FakeHost&, const Range& range, const FakeArgs&, Variant& out) {
  const bool one = !range->Fonts().empty() && UniformColor(*range);
  out = Variant::I4(one ? range->Fonts().front()->colorType : kMixedValue);
  return kOk;
}

ResultCode GetTint(FakeHost&, const Range& range, const FakeArgs&, Variant& out) {
  if (range->Fonts().empty() || !UniformColor(*range)) return kHostException;
  out = Variant::R4(range->Fonts().front()->tint);
  return kOk;
}

ResultCode PutRgb(const Range& range, const Variant& value) {
  for (FakeFont* font : range->Fonts()) {
    font->rgb = value.whole();
    font->colorType = 1;
  }
  return kOk;
}

ResultCode PutScheme(const Range& range, const Variant& value) {
  for (FakeFont* font : range->Fonts()) {
    font->scheme = value.whole();
    font->colorType = 2;
    font->tint = 0.0F;
  }
  return kOk;
}

ResultCode PutTint(const Range& range, const Variant& value) {
  for (FakeFont* font : range->Fonts()) font->tint = value.single();
  return kOk;
}

const FakeClass& ColorClass() {
  static const FakeClass made = {
      "ColorFormat",
      ppt::kColorFormat,
      false,
      {Getter<RangeNode>(u"Type", 101, GetColorType),
       WithPut<RangeNode>(Getter<RangeNode>(u"RGB", 0, GetColorWhole<&FakeFont::rgb>), PutRgb),
       WithPut<RangeNode>(Getter<RangeNode>(u"SchemeColor", 2003, GetColorWhole<&FakeFont::scheme>),
                          PutScheme),
       WithPut<RangeNode>(Getter<RangeNode>(u"TintAndShade", 103, GetTint), PutTint)}};
  return made;
}

ResultCode GetColor(FakeHost& host, const Range& range, const FakeArgs&, Variant& out) {
  out = Variant::Object(FakeObject::Make(host, ColorClass(), range));
  return kOk;
}

const FakeClass& FontClass() {
  static const FakeClass made = {
      "Font",
      ppt::kFont,
      false,
      {Getter<RangeNode>(u"Color", 2003, GetColor), WholeMember(u"Bold", 2004, &FakeFont::bold),
       WholeMember(u"Italic", 2005, &FakeFont::italic),
       WithPut<RangeNode>(Getter<RangeNode>(u"Size", 2014, GetSize), PutSize),
       NameMember(u"Name", 2015, &FakeFont::name),
       NameMember(u"NameFarEast", 2016, &FakeFont::nameFarEast),
       NameMember(u"NameAscii", 2017, &FakeFont::nameAscii)}};
  return made;
}

ResultCode GetFont(FakeHost& host, const Range& range, const FakeArgs&, Variant& out) {
  out = Variant::Object(FakeObject::Make(host, FontClass(), range));
  return kOk;
}

const FakeClass& RangeClass() {
  static const FakeClass made = {
      "TextRange",
      ppt::kTextRange,
      false,
      {Getter<RangeNode>(u"Paragraphs", 2010, GetParagraphs),
       Getter<RangeNode>(u"Characters", 2013, GetCharacters),
       Getter<RangeNode>(u"Count", 11,
                         [](FakeHost&, const auto& range, const auto&, Variant& out) {
                           out = Variant::I4(range->units);
                           return kOk;
                         }),
       Getter<RangeNode>(u"Start", 2004,
                         [](FakeHost&, const auto& range, const auto&, Variant& out) {
                           out = Variant::I4(static_cast<std::int32_t>(range->start + 1));
                           return kOk;
                         }),
       Getter<RangeNode>(u"Length", 2005,
                         [](FakeHost&, const auto& range, const auto&, Variant& out) {
                           out = Variant::I4(static_cast<std::int32_t>(range->length));
                           return kOk;
                         }),
       WithPut<RangeNode>(
           Getter<RangeNode>(u"Text", 0,
                             [](FakeHost&, const auto& range, const auto&, Variant& out) {
                               out = Variant::Text(range->Text());
                               return kOk;
                             }),
           PutText),
       Getter<RangeNode>(u"Parent", 2002,
                         [](FakeHost& host, const auto& range, const auto&, Variant& out) {
                           out = Variant::Object(TextFrameObject(host, range->text));
                           return kOk;
                         }),
       Getter<RangeNode>(u"Font", 2022, GetFont)}};
  return made;
}

const FakeClass& TextFrameClass() {
  static const FakeClass made = {
      "TextFrame",
      ppt::kTextFrame,
      false,
      {Getter<FakeText>(u"Parent", 1,
                        [](FakeHost& host, const auto& text, const auto&, Variant& out) {
                          const FakeShapeRef shape = text->shape.lock();
                          if (!shape) return kHostException;
                          out = Variant::Object(host.ShapeObject(shape));
                          return kOk;
                        }),
       Getter<FakeText>(u"HasText", 2003,
                        [](FakeHost&, const auto& text, const auto&, Variant& out) {
                          out = Variant::I4(text->text.empty() ? 0 : kTrue);
                          return kOk;
                        }),
       Getter<FakeText>(u"TextRange", 2004,
                        [](FakeHost& host, const auto& text, const auto&, Variant& out) {
                          out = Variant::Object(WholeRange(host, text));
                          return kOk;
                        })}};
  return made;
}

}  // namespace

ObjectRef TextFrameObject(FakeHost& host, const std::shared_ptr<FakeText>& text) {
  return FakeObject::Make(host, TextFrameClass(), text);
}

ObjectRef WholeRange(FakeHost& host, const std::shared_ptr<FakeText>& text) {
  return RangeObjectOf(host, text, 0, text->text.size(), 1);
}

ObjectRef StretchOf(FakeHost& host, const std::shared_ptr<FakeText>& text, std::size_t start,
                    std::size_t length) {
  start = std::min(start, text->text.size());
  length = std::min(length, text->text.size() - start);
  return RangeObjectOf(host, text, start, length, length);
}

}  // namespace quillmarch::addin::test
