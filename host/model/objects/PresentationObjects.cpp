#include "host/model/objects/PresentationObjects.h"

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/SlideObjects.h"
#include "host/model/objects/TagsObject.h"
#include "host/model/objects/WindowObjects.h"

namespace quillmarch::host::model {

std::string FileNameOf(const std::string& path) {
  return path.substr(path.find_last_of('/') + 1);
}

const MemberTable& PresentationObject::Table() const {
  using Self = PresentationObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kPresentation},
      {{u"Slides", 2011,
        [](Self& self) { return Make<SlidesObject>(self.session(), self.open()); }},
       {u"PageSetup", 2012,
        [](Self& self) { return Make<PageSetupObject>(self.session(), self.open()); }},
       {u"Windows", 2017,
        [](Self& self) { return Make<WindowsObject>(self.session(), self.open()); }},
       {u"Tags", 2018,
        [](Self& self) { return Make<TagsObject>(self.session(), self.open(), deck::TagOwner{}); }},
       {u"FullName", 2024, [](Self& self) { return ToWide(self.open()->path); }},
       {u"Name", 2025, [](Self& self) { return ToWide(FileNameOf(self.open()->path)); }},
       {u"Path", 2026,
        [](Self& self) {
          const std::string& path = self.open()->path;
          const std::size_t slash = path.find_last_of('/');
          return slash == std::string::npos ? Wide() : ToWide(path.substr(0, slash));
        }},
       {u"Saved", 2027, [](Self& self) { return TriState(!self.deck().Edited()); }}});
  return table;
}

const MemberTable& PageSetupObject::Table() const {
  using Self = PageSetupObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kPageSetup},
      {{u"FirstSlideNumber", 2003,
        [](Self& self) { return Variant::I4(self.deck().FirstSlideNumber()); }},
       {u"SlideHeight", 2004, [](Self& self) { return SingleOf(self.deck().SlideHeight()); }},
       {u"SlideWidth", 2005, [](Self& self) { return SingleOf(self.deck().SlideWidth()); }}});
  return table;
}

}  // namespace quillmarch::host::model
