// The host itself, its windows and presentations.
#include "foundation/automation/HostMembers.h"
#include "host/model/CallCount.h"
#include "host/model/Objects.h"
#include "host/model/SelectionObjects.h"

namespace quillmarch::host::model {
namespace {

constexpr std::int32_t kNormalView = 9;

std::string FileNameOf(const std::string& path) {
  return path.substr(path.find_last_of('/') + 1);
}

ResultCode GiveText(Variant& out, Wide text) {
  out = Variant::Text(std::move(text));
  return kOk;
}

ResultCode GiveWhole(Variant& out, std::size_t value) {
  out = Variant::I4(static_cast<std::int32_t>(value));
  return kOk;
}

// The deck at a 1-based index of `decks`; null for an index that none has.
OpenDeck* DeckAt(const Session& session, Args args) {
  std::int32_t index = 0;
  if (args.Count() != 1 || !args.Whole(0, 0, index)) return nullptr;
  if (index < 1 || static_cast<std::size_t>(index) > session.decks.size()) return nullptr;
  return session.decks[static_cast<std::size_t>(index) - 1].get();
}

}  // namespace

// ---- Application -----------------------------------------------------------------------------

ResultCode ApplicationObject::Presentations(Args, Variant& out) {
  return Give<PresentationsObject>(out, session());
}
ResultCode ApplicationObject::Windows(Args, Variant& out) {
  return Give<WindowsObject>(out, session(), nullptr);
}
ResultCode ApplicationObject::ActiveWindow(Args, Variant& out) {
  OpenDeck* const open = session()->Active();
  return open == nullptr ? kHostException : Give<WindowObject>(out, session(), open);
}
ResultCode ApplicationObject::ActivePresentation(Args, Variant& out) {
  OpenDeck* const open = session()->Active();
  return open == nullptr ? kHostException : Give<PresentationObject>(out, session(), open);
}
ResultCode ApplicationObject::Name(Args, Variant& out) {
  return GiveText(out, session()->personality.applicationName);
}
ResultCode ApplicationObject::Version(Args, Variant& out) {
  return GiveText(out, session()->personality.applicationVersion);
}

const MemberTable& ApplicationObject::Table() const {
  using Self = ApplicationObject;
  static const MemberTable table(
      {ppt::kApplication}, {{u"Presentations", 2001, Getter<&Self::Presentations>::Call},
                            {u"Windows", 2002, Getter<&Self::Windows>::Call},
                            {u"ActiveWindow", 2004, Getter<&Self::ActiveWindow>::Call},
                            {u"ActivePresentation", 2005, Getter<&Self::ActivePresentation>::Call},
                            {u"Name", 0, Getter<&Self::Name>::Call},
                            {u"Version", 2014, Getter<&Self::Version>::Call}});
  return table;
}

// ---- Presentations, DocumentWindows ----------------------------------------------------------

ResultCode PresentationsObject::Count(Args, Variant& out) {
  return GiveWhole(out, session()->decks.size());
}
ResultCode PresentationsObject::Item(Args args, Variant& out) {
  OpenDeck* const open = DeckAt(*session(), args);
  return open == nullptr ? kHostException : Give<PresentationObject>(out, session(), open);
}

const MemberTable& PresentationsObject::Table() const {
  using Self = PresentationsObject;
  static const MemberTable table(
      {ppt::LibraryInterface(0x62)},
      {{u"Count", 11, Getter<&Self::Count>::Call}, {u"Item", 2003, Getter<&Self::Item>::Call}});
  return table;
}

ResultCode WindowsObject::Count(Args, Variant& out) {
  return GiveWhole(out, open() != nullptr ? 1 : session()->decks.size());
}
ResultCode WindowsObject::Item(Args args, Variant& out) {
  OpenDeck* found = nullptr;
  std::int32_t index = 0;
  if (open() == nullptr)
    found = DeckAt(*session(), args);
  else if (args.Count() == 1 && args.Whole(0, 0, index) && index == 1)
    found = open();
  return found == nullptr ? kHostException : Give<WindowObject>(out, session(), found);
}

const MemberTable& WindowsObject::Table() const {
  using Self = WindowsObject;
  static const MemberTable table(
      {ppt::kDocumentWindows},
      {{u"Count", 11, Getter<&Self::Count>::Call}, {u"Item", 0, Getter<&Self::Item>::Call}});
  return table;
}

// ---- DocumentWindow, View --------------------------------------------------------------------

ResultCode WindowObject::Selection(Args, Variant& out) {
  return Give<SelectionObject>(out, session(), open());
}
ResultCode WindowObject::View(Args, Variant& out) {
  return Give<ViewObject>(out, session(), open());
}
ResultCode WindowObject::Presentation(Args, Variant& out) {
  return Give<PresentationObject>(out, session(), open());
}
ResultCode WindowObject::ViewType(Args, Variant& out) {
  out = Variant::I4(kNormalView);
  return kOk;
}
ResultCode WindowObject::Active(Args, Variant& out) {
  out = TriState(session()->Active() == open());
  return kOk;
}
ResultCode WindowObject::Activate(Args, Variant&) {
  for (std::size_t i = 0; i < session()->decks.size(); ++i) {
    if (session()->decks[i].get() == open()) session()->active = i;
  }
  return kOk;
}
ResultCode WindowObject::Caption(Args, Variant& out) {
  return GiveText(out, ToWide(FileNameOf(open()->path)));
}
ResultCode WindowObject::Handle(Args, Variant& out) {
  out = Variant::I4(open()->window);
  return kOk;
}

const MemberTable& WindowObject::Table() const {
  using Self = WindowObject;
  static const MemberTable table({ppt::kDocumentWindow},
                                 {{u"Selection", 2003, Getter<&Self::Selection>::Call},
                                  {u"View", 2004, Getter<&Self::View>::Call},
                                  {u"Presentation", 2005, Getter<&Self::Presentation>::Call},
                                  {u"ViewType", 2006, Getter<&Self::ViewType>::Call},
                                  {u"Active", 2008, Getter<&Self::Active>::Call},
                                  {u"Activate", 2015, Getter<&Self::Activate>::Call},
                                  {u"Caption", 0, Getter<&Self::Caption>::Call},
                                  {u"HWND", 2020, Getter<&Self::Handle>::Call}});
  return table;
}

ResultCode ViewObject::Type(Args, Variant& out) {
  out = Variant::I4(kNormalView);
  return kOk;
}
ResultCode ViewObject::Slide(Args, Variant& out) {
  if (open()->shown >= deck().SlideCount()) return kHostException;
  return Give<SlideObject>(out, session(), open(), deck::PageAddress{open()->shown, false});
}
ResultCode ViewObject::GotoSlide(Args args, Variant&) {
  std::int32_t index = 0;
  if (args.Count() != 1) return kBadParamCount;
  if (!args.Whole(0, 0, index)) return kTypeMismatch;
  if (index < 1 || static_cast<std::uint32_t>(index) > deck().SlideCount()) return kHostException;
  open()->Show(static_cast<std::uint32_t>(index) - 1);
  ++HostCallCount().jumps;
  return kOk;
}

const MemberTable& ViewObject::Table() const {
  using Self = ViewObject;
  static const MemberTable table({ppt::kView},
                                 {{u"Type", 2003, Getter<&Self::Type>::Call},
                                  {u"Slide", 2006, Getter<&Self::Slide>::Call},
                                  {u"GotoSlide", 2007, Getter<&Self::GotoSlide>::Call}});
  return table;
}

// ---- Presentation, PageSetup -----------------------------------------------------------------

ResultCode PresentationObject::Slides(Args, Variant& out) {
  return Give<SlidesObject>(out, session(), open());
}
ResultCode PresentationObject::PageSetup(Args, Variant& out) {
  return Give<PageSetupObject>(out, session(), open());
}
ResultCode PresentationObject::Windows(Args, Variant& out) {
  return Give<WindowsObject>(out, session(), open());
}
ResultCode PresentationObject::Tags(Args, Variant& out) {
  return Give<TagsObject>(out, session(), open(), deck::TagOwner{});
}
ResultCode PresentationObject::FullName(Args, Variant& out) {
  return GiveText(out, ToWide(open()->path));
}
ResultCode PresentationObject::Name(Args, Variant& out) {
  return GiveText(out, ToWide(FileNameOf(open()->path)));
}
ResultCode PresentationObject::Path(Args, Variant& out) {
  const std::size_t slash = open()->path.find_last_of('/');
  return GiveText(out, slash == std::string::npos ? Wide() : ToWide(open()->path.substr(0, slash)));
}
ResultCode PresentationObject::Saved(Args, Variant& out) {
  out = TriState(!deck().Edited());
  return kOk;
}

const MemberTable& PresentationObject::Table() const {
  using Self = PresentationObject;
  static const MemberTable table({ppt::kPresentation},
                                 {{u"Slides", 2011, Getter<&Self::Slides>::Call},
                                  {u"PageSetup", 2012, Getter<&Self::PageSetup>::Call},
                                  {u"Windows", 2017, Getter<&Self::Windows>::Call},
                                  {u"Tags", 2018, Getter<&Self::Tags>::Call},
                                  {u"FullName", 2024, Getter<&Self::FullName>::Call},
                                  {u"Name", 2025, Getter<&Self::Name>::Call},
                                  {u"Path", 2026, Getter<&Self::Path>::Call},
                                  {u"Saved", 2027, Getter<&Self::Saved>::Call}});
  return table;
}

ResultCode PageSetupObject::FirstSlideNumber(Args, Variant& out) {
  out = Variant::I4(deck().FirstSlideNumber());
  return kOk;
}
ResultCode PageSetupObject::SlideHeight(Args, Variant& out) {
  out = Variant::R4(static_cast<float>(deck().SlideHeight()));
  return kOk;
}
ResultCode PageSetupObject::SlideWidth(Args, Variant& out) {
  out = Variant::R4(static_cast<float>(deck().SlideWidth()));
  return kOk;
}

const MemberTable& PageSetupObject::Table() const {
  using Self = PageSetupObject;
  static const MemberTable table(
      {ppt::kPageSetup}, {{u"FirstSlideNumber", 2003, Getter<&Self::FirstSlideNumber>::Call},
                          {u"SlideHeight", 2004, Getter<&Self::SlideHeight>::Call},
                          {u"SlideWidth", 2005, Getter<&Self::SlideWidth>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
