// What every object that belongs to one open deck has.
#pragma once

#include <utility>

#include "host/deck/Deck.h"
#include "host/model/ModelObject.h"

namespace quillmarch::host::model {

class DeckObject : public ModelObject {
 protected:
  DeckObject(SessionRef session, OpenDeck* open) : ModelObject(std::move(session)), open_(open) {}
  deck::Deck& deck() const { return *open_->deck; }
  OpenDeck* open() const { return open_; }

 private:
  OpenDeck* open_;
};

}  // namespace quillmarch::host::model
