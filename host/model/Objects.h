// The objects of the model, one class for each thing that a host shows. An object holds an address
// (deck, page, shape, range of text), never a pointer into a parsed part, so it stays good while
// parts come and go.
#pragma once

#include <cstdint>
#include <optional>

#include "host/deck/Deck.h"
#include "host/deck/TagList.h"
#include "host/model/ModelObject.h"

namespace quillmarch::host::model {

class ApplicationObject final : public ModelObject {
 public:
  explicit ApplicationObject(SessionRef session) : ModelObject(std::move(session)) {}
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(session().get()); }

  ResultCode Presentations(Args, Variant& out);
  ResultCode Windows(Args, Variant& out);
  ResultCode ActiveWindow(Args, Variant& out);
  ResultCode ActivePresentation(Args, Variant& out);
  ResultCode Name(Args, Variant& out);
  ResultCode Version(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

// Something that belongs to one open deck.
class DeckObject : public ModelObject {
 protected:
  DeckObject(SessionRef session, OpenDeck* open) : ModelObject(std::move(session)), open_(open) {}
  deck::Deck& deck() const { return *open_->deck; }
  OpenDeck* open() const { return open_; }

 private:
  OpenDeck* open_;
};

class PresentationsObject final : public ModelObject {
 public:
  explicit PresentationsObject(SessionRef session) : ModelObject(std::move(session)) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

// All windows, or with a deck its own.
class WindowsObject final : public DeckObject {
 public:
  WindowsObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

class WindowObject final : public DeckObject {
 public:
  WindowObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(&open()->window); }
  ResultCode Selection(Args, Variant& out);
  ResultCode View(Args, Variant& out);
  ResultCode Presentation(Args, Variant& out);
  ResultCode ViewType(Args, Variant& out);
  ResultCode Active(Args, Variant& out);
  ResultCode Activate(Args, Variant& out);
  ResultCode Caption(Args, Variant& out);
  ResultCode Handle(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

class ViewObject final : public DeckObject {
 public:
  ViewObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  ResultCode Type(Args, Variant& out);
  ResultCode Slide(Args, Variant& out);
  ResultCode GotoSlide(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

class PresentationObject final : public DeckObject {
 public:
  PresentationObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(open()); }
  ResultCode Slides(Args, Variant& out);
  ResultCode PageSetup(Args, Variant& out);
  ResultCode Windows(Args, Variant& out);
  ResultCode Tags(Args, Variant& out);
  ResultCode FullName(Args, Variant& out);
  ResultCode Name(Args, Variant& out);
  ResultCode Path(Args, Variant& out);
  ResultCode Saved(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

class PageSetupObject final : public DeckObject {
 public:
  PageSetupObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  ResultCode FirstSlideNumber(Args, Variant& out);
  ResultCode SlideHeight(Args, Variant& out);
  ResultCode SlideWidth(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

class SlidesObject final : public DeckObject {
 public:
  SlidesObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);
  ResultCode FindBySlideId(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;
};

// A slide, or the range of one that a slide's notes page is given as.
class SlideObject final : public DeckObject {
 public:
  SlideObject(SessionRef session, OpenDeck* open, deck::PageAddress page)
      : DeckObject(std::move(session), open), page_(page) {}
  ResultCode Shapes(Args, Variant& out);
  ResultCode Name(Args, Variant& out);
  ResultCode SlideId(Args, Variant& out);
  ResultCode SlideIndex(Args, Variant& out);
  ResultCode SlideNumber(Args, Variant& out);
  ResultCode NotesPage(Args, Variant& out);
  ResultCode HasNotesPage(Args, Variant& out);
  ResultCode Tags(Args, Variant& out);
  ResultCode Parent(Args, Variant& out);
  ResultCode RangeCount(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::PageAddress page_;
};

// The shapes of a page, or with a group's number its group items.
class ShapesObject final : public DeckObject {
 public:
  ShapesObject(SessionRef session, OpenDeck* open, deck::PageAddress page, std::uint32_t group)
      : DeckObject(std::move(session), open), page_(page), group_(group) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  std::span<const std::uint32_t> List() const;
  deck::PageAddress page_;
  std::uint32_t group_;
};

class ShapeObject final : public DeckObject {
 public:
  ShapeObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}
  ResultCode Type(Args, Variant& out);
  ResultCode Name(Args, Variant& out);
  ResultCode Id(Args, Variant& out);
  ResultCode AlternativeText(Args, Variant& out);
  ResultCode Visible(Args, Variant& out);
  ResultCode Left(Args, Variant& out);
  ResultCode PutLeft(const Variant& value);
  ResultCode Top(Args, Variant& out);
  ResultCode PutTop(const Variant& value);
  ResultCode Width(Args, Variant& out);
  ResultCode PutWidth(const Variant& value);
  ResultCode Height(Args, Variant& out);
  ResultCode PutHeight(const Variant& value);
  ResultCode ZOrderPosition(Args, Variant& out);
  ResultCode HasTextFrame(Args, Variant& out);
  ResultCode TextFrame(Args, Variant& out);
  ResultCode TextFrame2(Args, Variant& out);
  ResultCode HasTable(Args, Variant& out);
  ResultCode Table_(Args, Variant& out);
  ResultCode HasChart(Args, Variant& out);
  ResultCode HasSmartArt(Args, Variant& out);
  ResultCode GroupItems(Args, Variant& out);
  ResultCode PlaceholderFormat(Args, Variant& out);
  ResultCode Tags(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  struct View {
    deck::SlidePart* part = nullptr;
    const deck::ShapeEntry* entry = nullptr;
  };
  View Look() const;
  ResultCode KindFlag(deck::ShapeKind kind, Variant& out) const;
  using Side = double deck::ShapeBox::*;
  ResultCode GetSide(Side side, Variant& out) const;
  ResultCode PutSide(Side side, bool isLength, const Variant& value) const;
  deck::ShapeAddress address_;
};

class PlaceholderFormatObject final : public DeckObject {
 public:
  PlaceholderFormatObject(SessionRef session, OpenDeck* open, std::int32_t type,
                          std::int32_t contained)
      : DeckObject(std::move(session), open), type_(type), contained_(contained) {}
  ResultCode Type(Args, Variant& out);
  ResultCode ContainedType(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  std::int32_t type_;
  std::int32_t contained_;
};

// What both text frames of a shape have.
class FrameObject : public DeckObject {
 public:
  ResultCode HasText(Args, Variant& out);
  ResultCode WordWrap(Args, Variant& out);
  ResultCode PutWordWrap(const Variant& value);
  ResultCode MarginLeft(Args, Variant& out);
  ResultCode PutMarginLeft(const Variant& value);
  ResultCode MarginTop(Args, Variant& out);
  ResultCode PutMarginTop(const Variant& value);
  ResultCode MarginRight(Args, Variant& out);
  ResultCode PutMarginRight(const Variant& value);
  ResultCode MarginBottom(Args, Variant& out);
  ResultCode PutMarginBottom(const Variant& value);
  ResultCode Parent(Args, Variant& out);

 protected:
  FrameObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}
  const deck::ShapeAddress& address() const { return address_; }
  deck::AutofitKind Autofit() const { return deck().Frame(address_).autofit->kind; }
  ResultCode PutAutofit(deck::AutofitKind kind) const;
  ResultCode Change(const deck::FrameProps& change) const;
  // Where the first frame's autosize is kept on a host that has two; null on others.
  std::int32_t* FirstAutoSize(bool make) const;

 private:
  using Inset = std::optional<std::int64_t> deck::FrameProps::*;
  ResultCode GetInset(Inset inset, Variant& out) const;
  ResultCode PutInset(Inset inset, const Variant& value) const;
  deck::ShapeAddress address_;
};

class TextFrameObject final : public FrameObject {
 public:
  TextFrameObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : FrameObject(std::move(session), open, address) {}
  ResultCode TextRange(Args, Variant& out);
  ResultCode AutoSize(Args, Variant& out);
  ResultCode PutAutoSize(const Variant& value);

 protected:
  const MemberTable& Table() const override;
};

class TextFrame2Object final : public FrameObject {
 public:
  TextFrame2Object(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : FrameObject(std::move(session), open, address) {}
  ResultCode AutoSize(Args, Variant& out);
  ResultCode PutAutoSize(const Variant& value);

 protected:
  const MemberTable& Table() const override;
};

class TextRangeObject final : public DeckObject {
 public:
  // `count` units made the range; `reachesEnd` when it holds the frame's last paragraph, which may
  // be empty.
  TextRangeObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address,
                  deck::TextSpan span, std::size_t count, bool reachesEnd)
      : DeckObject(std::move(session), open),
        address_(address),
        span_(span),
        count_(count),
        reachesEnd_(reachesEnd) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Start(Args, Variant& out);
  ResultCode Length(Args, Variant& out);
  ResultCode Text(Args, Variant& out);
  ResultCode PutText(const Variant& value);
  ResultCode Paragraphs(Args args, Variant& out);
  ResultCode Characters(Args args, Variant& out);
  ResultCode Runs(Args args, Variant& out);
  ResultCode Font(Args, Variant& out);
  ResultCode BoundLeft(Args, Variant& out);
  ResultCode BoundTop(Args, Variant& out);
  ResultCode BoundWidth(Args, Variant& out);
  ResultCode BoundHeight(Args, Variant& out);
  ResultCode Parent(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::TextBody* Body() const;
  ResultCode Bound(double deck::ShapeBox::*side, Variant& out) const;
  deck::ShapeAddress address_;
  deck::TextSpan span_;
  std::size_t count_;
  bool reachesEnd_;
};

class FontObject final : public DeckObject {
 public:
  FontObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address,
             deck::TextSpan span)
      : DeckObject(std::move(session), open), address_(address), span_(span) {}
  ResultCode Size(Args, Variant& out);
  ResultCode PutSize(const Variant& value);
  ResultCode Bold(Args, Variant& out);
  ResultCode PutBold(const Variant& value);
  ResultCode Italic(Args, Variant& out);
  ResultCode PutItalic(const Variant& value);
  ResultCode Underline(Args, Variant& out);
  ResultCode PutUnderline(const Variant& value);
  ResultCode Color(Args, Variant& out);
  ResultCode Name(Args, Variant& out);
  ResultCode PutName(const Variant& value);
  ResultCode NameAscii(Args, Variant& out);
  ResultCode PutNameAscii(const Variant& value);
  ResultCode NameFarEast(Args, Variant& out);
  ResultCode PutNameFarEast(const Variant& value);
  ResultCode NameComplexScript(Args, Variant& out);
  ResultCode PutNameComplexScript(const Variant& value);

 protected:
  const MemberTable& Table() const override;

 private:
  using Flag = std::int8_t deck::CharProps::*;
  using Face = std::string deck::CharProps::*;
  deck::TextBody* Body() const;
  ResultCode GetFlag(Flag flag, Variant& out) const;
  ResultCode PutFlag(Flag flag, const char* attribute, const char* on, const char* off,
                     const Variant& value) const;
  bool Faces(Face face, std::string& common) const;
  ResultCode GetFace(Face face, Variant& out) const;
  ResultCode PutFaces(std::initializer_list<Face> faces, const Variant& value) const;
  deck::ShapeAddress address_;
  deck::TextSpan span_;
};

class ColorFormatObject final : public DeckObject {
 public:
  ColorFormatObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address,
                    deck::TextSpan span)
      : DeckObject(std::move(session), open), address_(address), span_(span) {}
  ResultCode Type(Args, Variant& out);
  ResultCode Rgb(Args, Variant& out);
  ResultCode PutRgb(const Variant& value);
  ResultCode SchemeColor(Args, Variant& out);
  ResultCode PutSchemeColor(const Variant& value);
  ResultCode ObjectThemeColor(Args, Variant& out);
  ResultCode PutObjectThemeColor(const Variant& value);
  ResultCode TintAndShade(Args, Variant& out);
  ResultCode PutTintAndShade(const Variant& value);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::TextBody* Body() const;
  const deck::ColorSpec* Common() const;
  ResultCode Put(const deck::ColorSpec& color) const;
  deck::ShapeAddress address_;
  deck::TextSpan span_;
};

class TableObject final : public DeckObject {
 public:
  TableObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}
  ResultCode Rows(Args, Variant& out);
  ResultCode Columns(Args, Variant& out);
  ResultCode Cell(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::ShapeAddress address_;
};

// A table's rows or columns.
class TableLinesObject final : public DeckObject {
 public:
  TableLinesObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address, bool rows)
      : DeckObject(std::move(session), open), address_(address), rows_(rows) {}
  ResultCode Count(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::ShapeAddress address_;
  bool rows_;
};

class CellObject final : public DeckObject {
 public:
  CellObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}
  ResultCode Shape(Args, Variant& out);
  ResultCode Merged(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::ShapeAddress address_;
};

class TagsObject final : public DeckObject {
 public:
  TagsObject(SessionRef session, OpenDeck* open, const deck::TagOwner& owner)
      : DeckObject(std::move(session), open), owner_(owner) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);
  ResultCode Add(Args args, Variant& out);
  ResultCode Name(Args args, Variant& out);
  ResultCode Value(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  deck::TagOwner owner_;
};

}  // namespace quillmarch::host::model
