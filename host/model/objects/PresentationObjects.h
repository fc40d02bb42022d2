// A presentation and its page setup.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class PresentationObject final : public DeckObject {
 public:
  PresentationObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(open()); }

 protected:
  const MemberTable& Table() const override;
};

class PageSetupObject final : public DeckObject {
 public:
  PageSetupObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}

 protected:
  const MemberTable& Table() const override;
};

// A path's last component.
std::string FileNameOf(const std::string& path);

}  // namespace quillmarch::host::model
