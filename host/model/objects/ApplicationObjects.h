// The application and its presentations.
#pragma once

#include <cstdint>
#include <utility>

#include "host/model/ModelObject.h"

namespace quillmarch::host::model {

class ApplicationObject final : public ModelObject {
 public:
  explicit ApplicationObject(SessionRef session) : ModelObject(std::move(session)) {}
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(session().get()); }

 protected:
  const MemberTable& Table() const override;
};

class PresentationsObject final : public ModelObject {
 public:
  explicit PresentationsObject(SessionRef session) : ModelObject(std::move(session)) {}

 protected:
  const MemberTable& Table() const override;
};

// The deck at the 1-based index that is the call's one argument; null when there is none.
OpenDeck* DeckAt(const Session& session, Args args);

}  // namespace quillmarch::host::model
