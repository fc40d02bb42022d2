// Document windows, one for each open deck, and their views.
#pragma once

#include <cstdint>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

// All windows; with a deck, only its own.
class WindowsObject final : public DeckObject {
 public:
  WindowsObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}

 protected:
  const MemberTable& Table() const override;
};

class WindowObject final : public DeckObject {
 public:
  WindowObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(&open()->window); }

 protected:
  const MemberTable& Table() const override;
};

class ViewObject final : public DeckObject {
 public:
  ViewObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}

 protected:
  const MemberTable& Table() const override;

 private:
  ResultCode GotoSlide(Args args) const;
};

}  // namespace quillmarch::host::model
