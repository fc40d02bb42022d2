// What the text of a frame measures, and frames that fit themselves to it. Nothing is measured
// before somebody asks, or before a frame that fits itself is saved with another text. Host thread
// only.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/deck/Deck.h"
#include "host/layout/LayoutEngine.h"

namespace quillmarch::host::model {

class FrameMeasure {
 public:
  FrameMeasure();
  ~FrameMeasure();
  FrameMeasure(const FrameMeasure&) = delete;
  FrameMeasure& operator=(const FrameMeasure&) = delete;

  // Begins the slow part of the first measuring on a thread of its own.
  void Prepare() { Layout().ReadFontsAhead(); }

  // The box of a range of the text in slide coordinates, of the unrotated shape, after the frame
  // was fitted; `toTheEnd` also counts an empty last paragraph. Laid out again only when the text,
  // its format or the frame has changed. False when there is no text body.
  bool Bounds(deck::Deck& deck, const deck::ShapeAddress& address, deck::TextSpan span,
              bool toTheEnd, deck::ShapeBox& out);

  // Gives a shape that grows with its text the size it has to have by now.
  void GrowShape(deck::Deck& deck, const deck::ShapeAddress& address);
  // The same, and finds the scale of a text that shrinks to fit its shape.
  void Fit(deck::Deck& deck, const deck::ShapeAddress& address);

  // How many texts were laid out to answer Bounds() or GrowShape() so far.
  std::uint64_t Layouts() const { return layouts_; }

 private:
  struct Entry;
  layout::LayoutEngine& Layout();
  // Null when there is no text body.
  const Entry* Laid(deck::Deck& deck, const deck::ShapeAddress& address);
  void FitShape(deck::Deck& deck, const deck::ShapeAddress& address);
  void FitText(deck::Deck& deck, const deck::ShapeAddress& address);

  std::unique_ptr<layout::LayoutEngine> layout_;  // opens the machine's fonts, so made when needed
  std::vector<Entry> entries_;
  std::size_t next_ = 0;  // the entry that makes room
  std::uint64_t layouts_ = 0;
};

}  // namespace quillmarch::host::model
