// What all objects of one host share: the decks that are open and the personality. It lives as
// long as the host or any object that was handed out.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/deck/Deck.h"
#include "host/model/FrameMeasure.h"
#include "host/model/Host.h"
#include "host/model/Selected.h"

namespace quillmarch::host::model {

// A deck in its window.
struct OpenDeck {
  std::string path;
  std::unique_ptr<deck::Deck> deck;
  std::uint32_t shown = 0;  // the slide in view, 0-based
  std::int32_t window = 0;  // its handle, never 0
  // Of a host that keeps the autosize of its two text frames apart: the first one's, by slide and
  // shape, where it was set, or where the second one left it. The file holds the second one's.
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::int32_t> firstAutoSizes;
  Selected selected;

  // The selection is on the slide in view, so going to another slide clears it.
  void Show(std::uint32_t slide) {
    if (slide != shown) selected = {};
    shown = slide;
  }
};

struct Session {
  Personality personality;
  FrameMeasure measure;
  std::vector<std::unique_ptr<OpenDeck>> decks;  // one window each, in the order of opening
  std::size_t active = 0;
  std::thread::id thread = std::this_thread::get_id();

  OpenDeck* Active() const { return active < decks.size() ? decks[active].get() : nullptr; }
};

using SessionRef = std::shared_ptr<Session>;

}  // namespace quillmarch::host::model
