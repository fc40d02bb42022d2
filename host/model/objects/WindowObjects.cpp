#include "host/model/objects/WindowObjects.h"

#include "foundation/automation/HostMembers.h"
#include "host/model/CallCount.h"
#include "host/model/objects/ApplicationObjects.h"
#include "host/model/objects/PresentationObjects.h"
#include "host/model/objects/SelectionObjects.h"
#include "host/model/objects/SlideObjects.h"

namespace quillmarch::host::model {
namespace {

constexpr std::int32_t kNormalView = 9;

}  // namespace

const MemberTable& WindowsObject::Table() const {
  using Self = WindowsObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kDocumentWindows},
      {{u"Count", 11,
        [](Self& self) {
          return CountOf(self.open() != nullptr ? 1 : self.session()->decks.size());
        }},
       {u"Item", 0, [](Self& self, Args args) {
          OpenDeck* found = nullptr;
          std::int32_t index = 0;
          if (self.open() == nullptr) {
            found = DeckAt(*self.session(), args);
          } else if (args.Count() == 1 && args.Whole(0, 0, index) && index == 1) {
            found = self.open();
          }
          return found == nullptr ? ObjectRef() : Make<WindowObject>(self.session(), found);
        }}});
  return table;
}

const MemberTable& WindowObject::Table() const {
  using Self = WindowObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kDocumentWindow},
      {{u"Caption", 0, [](Self& self) { return ToWide(FileNameOf(self.open()->path)); }},
       {u"Selection", 2003,
        [](Self& self) { return Make<SelectionObject>(self.session(), self.open()); }},
       {u"View", 2004, [](Self& self) { return Make<ViewObject>(self.session(), self.open()); }},
       {u"Presentation", 2005,
        [](Self& self) { return Make<PresentationObject>(self.session(), self.open()); }},
       {u"ViewType", 2006, [](Self&) { return Variant::I4(kNormalView); }},
       {u"Active", 2008,
        [](Self& self) { return TriState(self.session()->Active() == self.open()); }},
       {u"Activate", 2015,
        [](Self& self) {
          Session& session = *self.session();
          for (std::size_t i = 0; i < session.decks.size(); ++i) {
            if (session.decks[i].get() == self.open()) session.active = i;
          }
          return kOk;
        }},
       {u"HWND", 2020, [](Self& self) { return Variant::I4(self.open()->window); }}});
  return table;
}

ResultCode ViewObject::GotoSlide(Args args) const {
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
  static const auto table = MemberTable::Of<Self>(
      {ppt::kView},
      {{u"Type", 2003, [](Self&) { return Variant::I4(kNormalView); }},
       {u"Slide", 2006,
        [](Self& self) {
          const std::uint32_t shown = self.open()->shown;
          if (shown >= self.deck().SlideCount()) return ObjectRef();
          return Make<SlideObject>(self.session(), self.open(), deck::PageAddress{shown, false});
        }},
       {u"GotoSlide", 2007, [](Self& self, Args args) { return self.GotoSlide(args); }}});
  return table;
}

}  // namespace quillmarch::host::model
