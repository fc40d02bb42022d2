#include "host/model/objects/ApplicationObjects.h"

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/PresentationObjects.h"
#include "host/model/objects/WindowObjects.h"

namespace quillmarch::host::model {

OpenDeck* DeckAt(const Session& session, Args args) {
  std::int32_t index = 0;
  if (args.Count() != 1 || !args.Whole(0, 0, index)) return nullptr;
  if (index < 1 || static_cast<std::size_t>(index) > session.decks.size()) return nullptr;
  return session.decks[static_cast<std::size_t>(index) - 1].get();
}

const MemberTable& ApplicationObject::Table() const {
  using Self = ApplicationObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kApplication},
      {{u"Name", 0, [](Self& self) { return self.session()->personality.applicationName; }},
       {u"Presentations", 2001,
        [](Self& self) { return Make<PresentationsObject>(self.session()); }},
       {u"Windows", 2002, [](Self& self) { return Make<WindowsObject>(self.session(), nullptr); }},
       {u"ActiveWindow", 2004,
        [](Self& self) {
          OpenDeck* const open = self.session()->Active();
          return open == nullptr ? ObjectRef() : Make<WindowObject>(self.session(), open);
        }},
       {u"ActivePresentation", 2005,
        [](Self& self) {
          OpenDeck* const open = self.session()->Active();
          return open == nullptr ? ObjectRef() : Make<PresentationObject>(self.session(), open);
        }},
       {u"Version", 2014,
        [](Self& self) { return self.session()->personality.applicationVersion; }}});
  return table;
}

const MemberTable& PresentationsObject::Table() const {
  using Self = PresentationsObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::LibraryInterface(0x62)},
      {{u"Count", 11, [](Self& self) { return CountOf(self.session()->decks.size()); }},
       {u"Item", 2003, [](Self& self, Args args) {
          OpenDeck* const open = DeckAt(*self.session(), args);
          return open == nullptr ? ObjectRef() : Make<PresentationObject>(self.session(), open);
        }}});
  return table;
}

}  // namespace quillmarch::host::model
